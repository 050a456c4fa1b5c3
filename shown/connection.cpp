#include "shown/connection.h"

#include "program/branding.h"

namespace hr::shown
{

QString HandheldVersion;
QString HandheldDate;
QString HandheldType;
QString HandheldKind;
int SelectionAnswer = 0;
bool SelectionAwaited = false;

void ShowHandheld(const HandheldInfo &info)
{
    HandheldVersion = info.version;
    HandheldDate = info.date;
    HandheldType = info.type;
    HandheldKind = info.kind;
}

HandheldInfo ShownHandheld()
{
    return {HandheldVersion, HandheldDate, HandheldType, HandheldKind};
}

QString TitleWithHandheld()
{
    const QString front = TheBranding().windowTitle + QStringLiteral(" : Vers: ");
    if (HandheldVersion.isEmpty())
        return front + QStringLiteral("unbekannt");
    // A damaged or foreign identification may hold anything; a title is one line.
    QString type = HandheldType;
    type.removeIf([](QChar c) { return !c.isPrint(); });
    return front + HandheldVersion + QStringLiteral(" vom ") + HandheldDate + QStringLiteral(" Type: ") + type;
}

void ResetShownConnection()
{
    ShowHandheld({});
    SelectionAnswer = 0;
    SelectionAwaited = false;
}

} // namespace hr::shown
