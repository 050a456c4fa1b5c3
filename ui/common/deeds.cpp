#include "ui/common/deeds.h"

#include "platform/world.h"

#include <utility>

namespace hr::ui
{

namespace
{
std::function<void(const QString &)> shows;
constexpr qsizetype MostReports = 10;

QStringList &Reports()
{
    static QStringList reports;
    return reports;
}
} // namespace

void NoteReport(const QString &title, const QString &text)
{
    QStringList &reports = Reports();
    reports += TheEvents().now().toString(QStringLiteral("hh:mm:ss ")) + title + QStringLiteral(": ") + text;
    if (reports.size() > MostReports)
        reports.removeFirst();
}

QStringList RecentReports()
{
    return Reports();
}

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
