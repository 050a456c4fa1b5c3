#include "ui/compare/compare_commands.h"

#include "jobs/take_back.h"
#include "ui/common/careful_job.h"
#include "ui/common/desktop.h"
#include "ui/compare/compare_window.h"

#include <memory>

namespace hr::ui
{

namespace
{

std::unique_ptr<CompareWindow> compareWindow;

/// The window on a file; null where the file cannot be used.
CompareWindow *OpenOn(const QString &fileName)
{
    const auto file = LoadComparedFile(fileName);
    if (!file)
        return nullptr;
    if (!compareWindow)
        compareWindow = std::make_unique<CompareWindow>();
    compareWindow->open(*file);
    return compareWindow.get();
}

} // namespace

void CompareBackup()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName =
        TheDesktop().openFileName(QStringLiteral("Datensicherung vergleichen"), ComparedFilter());
    if (!fileName.isEmpty())
        OpenOn(fileName);
}

void CompareBackupWithHandheld(const QString &fileName)
{
    const Command command;
    if (!command.ok())
        return;
    if (CompareWindow *window = OpenOn(fileName))
        window->compareWithHandheld(command);
}

void TakeBackLastChange()
{
    const Command command;
    if (!command.ok())
        return;
    const QString title = QStringLiteral("Letzte Änderung zurücknehmen");
    const auto offer = OfferTakeBack(title);
    if (!offer || !command.connected())
        return;
    CarefulJob job;
    job.command = title;
    job.steps = offer->steps;
    job.undoes = offer->fileName;
    job.title = title;
    job.lead = offer->lead;
    const CarefulEnd end = RunFromWindow(command, job);
    if (end.is == CarefulEnd::Is::Written)
        TakeBackEnded(*offer, end.report);
}

void ResetCompareWindow()
{
    compareWindow.reset();
}

} // namespace hr::ui
