#include "shown/connection.h"

#include "program/branding.h"

namespace hr::shown
{

int SelectionAnswer = 0;
bool SelectionAwaited = false;

namespace
{
HandheldInfo shownHandheld;
} // namespace

void ShowHandheld(const HandheldInfo &info)
{
    shownHandheld = info;
}

HandheldInfo ShownHandheld()
{
    return shownHandheld;
}

QString TitleWithHandheld()
{
    const QString front = TheBranding().windowTitle + QStringLiteral(" : Vers: ");
    if (shownHandheld.version.isEmpty())
        return front + QStringLiteral("unbekannt");
    // A damaged or foreign identification may hold anything; a title is one line.
    QString type = shownHandheld.type;
    type.removeIf([](QChar c) { return !c.isPrint(); });
    return front + shownHandheld.version + QStringLiteral(" vom ") + shownHandheld.date + QStringLiteral(" Type: ")
        + type;
}

void ResetShownConnection()
{
    ShowHandheld({});
    SelectionAnswer = 0;
    SelectionAwaited = false;
}

} // namespace hr::shown
