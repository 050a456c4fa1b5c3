#include "cli/service.h"

#include "cli/output.h"
#include "link/open_link.h"
#include "platform/port_name.h"
#include "platform/world.h"
#include "program/run_control.h"

namespace hr::cli
{

namespace
{

/// What the options say, completed by what the windows have kept.
LinkSettings SettingsFor(const Options &options)
{
    LinkSettings settings = ReadSettings();
    if (!options.port.isEmpty()) {
        settings.port = {options.port, false};
        if (IsDemoPort(options.port))
            settings.interfaceType = InterfaceDirect;
    }
    if (options.interfaceType != InterfaceNone)
        settings.interfaceType = options.interfaceType;
    return settings;
}

QString Missing(const LinkSettings &settings, bool stationWanted)
{
    if (settings.port.text.trimmed().isEmpty())
        return QStringLiteral(
            "Kein Anschluss bekannt: bitte mit --anschluss angeben, zum Beispiel --anschluss Demo.");
    if (settings.interfaceType == InterfaceNone)
        return QStringLiteral("Kein Interface bekannt: bitte mit --interface 1 oder --interface 3 angeben.");
    if (settings.interfaceType == Interface48230)
        return QStringLiteral(
            "Über das Interface 48230 ist der Handregler nicht erreichbar: bitte --interface angeben.");
    if (stationWanted && settings.interfaceType != InterfaceDirect)
        return QStringLiteral("Die Zentrale ist nur mit --interface 3 erreichbar.");
    return {};
}

} // namespace

Service::Service(const Call &call, Wanted wanted) : state(open(call, wanted))
{
    if (state != Exit::Done || wanted != Wanted::Handheld)
        return;
    const Result<HandheldInfo> found = FindHandheld();
    info = found.value;
    if (!found.ok())
        state = BoxesAreSilent() ? Exit::Stopped : Exit::NoHandheld;
}

Exit Service::open(const Call &call, Wanted wanted)
{
    TheLink().use(SettingsFor(call.options));
    if (const QString missing = Missing(TheLink().settings(), wanted == Wanted::LineOnly); !missing.isEmpty()) {
        Tell(missing);
        return Exit::NoHandheld;
    }
    if (SetUpLink().ok())
        return Exit::Done;
    return BoxesAreSilent() ? Exit::Stopped : Exit::NoHandheld;
}

Service::~Service()
{
    if (CurrentRunState() == RunState::Ending)
        SetRunState(RunState::Leaving);
    static_cast<void>(SendHandheldBack()); // a silent one needs nothing more
    Comm().close();
}

} // namespace hr::cli
