#include "shown/connection.h"

#include "program/branding.h"

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
    return front + HandheldVersion + QStringLiteral(" vom ") + HandheldDate + QStringLiteral(" Type: ")
        + HandheldType;
}

void ResetShownConnection()
{
    ShowHandheld({});
    SelectionAnswer = 0;
    SelectionAwaited = false;
}
