#include "ui/common/deeds.h"

#include <utility>

namespace hr::ui
{

namespace
{
std::function<void(const QString &)> shows;
} // namespace

void NoteDeed(const QString &what)
{
    if (shows)
        shows(what);
}

void OnDeed(std::function<void(const QString &)> show)
{
    shows = std::move(show);
}

} // namespace hr::ui
