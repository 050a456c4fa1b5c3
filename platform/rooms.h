// The rooms of the house: each folder has a namespace of its own, and a room sees the names of the rooms that it may use.
// What is not named here is not seen: the simulated bus knows nothing of link or handheld.
#pragma once

namespace hr::platform
{
}

namespace hr::program
{
using namespace platform;
}

namespace hr::link
{
using namespace program;
}

namespace hr::handheld
{
using namespace link;
}

namespace hr::station
{
using namespace handheld;
}

namespace hr::symbols
{
using namespace handheld;
}

namespace hr::roster
{
using namespace symbols;
}

namespace hr::jobs
{
using namespace station;
using namespace roster;
} // namespace hr::jobs

namespace hr::shown
{
using namespace jobs;
}

namespace hr::ui
{
using namespace shown;
}

namespace hr::cli
{
using namespace jobs;
}

namespace hr::sim
{
using namespace platform;
}

namespace hr::app
{
using namespace ui;
using namespace cli;
} // namespace hr::app

namespace hr::tests
{
using namespace ui;
using namespace cli;
} // namespace hr::tests
