#include "ui/common/careful_job.h"

#include "jobs/journal.h"
#include "jobs/report.h"
#include "link/open_link.h"
#include "shown/connection.h"

namespace hr::ui
{

namespace
{

class WindowFace : public JobFace
{
public:
    WindowFace(const Command &theCommand, QString theTitle) : title(std::move(theTitle)), command(theCommand) { }

    [[nodiscard]] QString handheld() const override { return begunWith; }

    [[nodiscard]] bool agrees(Topic, const BoxText &question, bool defaultYes) override
    {
        return TheAsk().askYesNo(question, defaultYes);
    }

    [[nodiscard]] Handheld handheldNow() override
    {
        const bool stayed = TheLink().HandreglerGefunden; // otherwise the guard looks for one now
        if (!command.connected())
            return Handheld::Gone;
        if (HandheldName(ShownHandheld()) == begunWith)
            return stayed ? Handheld::Same : Handheld::Again;
        TheAsk().showBox({QStringLiteral("Jetzt ist ein anderer Handregler verbunden.\rEs wurde nichts geschrieben."),
            title, BoxIcon::Critical});
        return Handheld::Gone;
    }

    const QString title;

private:
    const Command &command;
    const QString begunWith = HandheldName(ShownHandheld());
};

void ShowReport(const CarefulJob &job, const CarefulReport &report)
{
    if (report.job.end == JobEnd::NothingDone && IdsOf(report.job, RecordState::Done).empty())
        return; // the reason has been told
    const QString text = ReportText(report);
    if (EndedEarly(report.job.end))
        ShowEndBox(report.job.end,
            EndText(report.job.end, QStringLiteral("Das Schreiben wurde angehalten.")) + QStringLiteral("\r\r")
                + text);
    else if (IsSettled(report))
        ShowDoneBox(text, job.title);
    else
        TheAsk().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

/// Nothing of the job is written; an earlier page may have been made good before, or not.
QString BreakText(const CarefulReport &report)
{
    if (report.restored.empty() && report.unproved.empty())
        return QStringLiteral("\rEs wurde nichts geschrieben.");
    return QStringLiteral("\rVon diesem Auftrag wurde nichts geschrieben.\r\r") + ReportText(report);
}

/// What came of it before the job itself.
void ShowBreak(const CarefulEnd &end, const QString &title)
{
    if (end.is == CarefulEnd::Is::BrokenOff && EndedEarly(end.end))
        ShowEndBox(end.end, EndText(end.end, QStringLiteral("Das Lesen wurde angehalten.")) + BreakText(end.report));
    else if (!end.report.restored.empty())
        ShowDoneBox(ReportText(end.report), title);
}

} // namespace

CarefulEnd RunFromWindow(const Command &command, const CarefulJob &job)
{
    WindowFace face(command, job.title);
    CarefulEnd end = RunCarefulJob(job, face);
    if (end.is == CarefulEnd::Is::Written)
        ShowReport(job, end.report);
    else
        ShowBreak(end, job.title);
    return end;
}

bool WaitingPagesMended(const Command &command)
{
    WindowFace face(command, QStringLiteral("Speicherseite wiederherstellen"));
    if (!PagesWait(face.handheld()))
        return true;
    const CarefulEnd end = MendPages(face, face.title);
    ShowBreak(end, face.title);
    return end.is == CarefulEnd::Is::Written && command.connected();
}

} // namespace hr::ui
