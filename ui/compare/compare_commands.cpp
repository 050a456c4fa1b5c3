#include "ui/compare/compare_commands.h"

#include "jobs/take_back.h"
#include "platform/files.h"
#include "ui/common/careful_job.h"
#include "ui/common/desktop.h"
#include "ui/compare/compare_window.h"

#include <memory>

namespace hr::ui
{

namespace
{

std::unique_ptr<CompareWindow> compareWindow;

/// The window on what is compared; null where the file cannot be used.
CompareWindow *OpenOn(const std::optional<ComparedFile> &file)
{
    if (!file)
        return nullptr;
    if (!compareWindow)
        compareWindow = std::make_unique<CompareWindow>();
    compareWindow->open(*file);
    return compareWindow.get();
}

void CompareNow(const Command &command, const std::optional<ComparedFile> &file)
{
    if (CompareWindow *window = OpenOn(file))
        window->compareWithHandheld(command);
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
        OpenOn(LoadComparedFile(fileName));
}

void CompareBackupWithHandheld(const QString &fileName)
{
    const Command command;
    if (!command.ok())
        return;
    CompareNow(command, LoadComparedFile(fileName));
}

void CompareLocosWithHandheld(const std::vector<RosterLoco> &locos)
{
    const Command command;
    if (!command.ok())
        return;
    ComparedFile file{KonfPath(QStringLiteral("\\konf\\Lokliste")), {}, {}};
    for (const RosterLoco &loco : locos) {
        file.about += PackRecord({RecordKind::Loco, loco.address}, loco.record);
        file.steps.push_back({StepKind::Write, {RecordKind::Loco, loco.address}, loco.record, {}});
    }
    CompareNow(command, file);
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
