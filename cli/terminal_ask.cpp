#include "cli/terminal_ask.h"

#include "cli/output.h"
#include "platform/qt/console.h"
#include "platform/text.h"
#include "program/run_control.h"

#include <cmath>
#include <cstdio>
#include <optional>

namespace hr::cli
{

namespace
{

QString LineText(const BoxText &box)
{
    const QString text = ScreenLines(box.text).trimmed();
    return box.title.isEmpty() ? text : QString(box.title.trimmed() + QStringLiteral(": ") + text);
}

QString TimeLeft(double seconds)
{
    if (seconds < 0)
        return {};
    const int whole = static_cast<int>(std::ceil(seconds));
    constexpr int minute = 60;
    return whole <= minute ? QStringLiteral(", noch %1 s").arg(whole)
                           : QStringLiteral(", noch %1 min").arg((whole + minute - 1) / minute);
}

/// What an answer means; nothing for what is none.
std::optional<bool> MeaningOf(const QString &answer, bool defaultYes)
{
    const QString word = answer.trimmed().toLower();
    if (word.isEmpty())
        return defaultYes;
    if (word == u"j" || word == u"ja" || word == u"y" || word == u"yes")
        return true;
    return word == u"n" || word == u"nein" || word == u"no" ? std::optional(false) : std::nullopt;
}

void WriteRaw(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

} // namespace

TerminalAsk::TerminalAsk(Console &theConsole, Manner wanted) : console(theConsole), manner(wanted) { }

void TerminalAsk::showBox(const BoxText &box)
{
    const bool information = box.icon == BoxIcon::Information;
    if (information && manner.quiet)
        return;
    const bool interrupted = visible;
    hideProgress();
    Tell(LineText(box));
    if (interrupted)
        showProgress(text);
}

void TerminalAsk::postBox(const BoxText &box)
{
    showBox(box);
}

bool TerminalAsk::askYesNo(const BoxText &box, bool defaultYes)
{
    hideProgress();
    if (BoxesAreSilent())
        return false;
    if (manner.yes && box.needsUser) {
        Tell(LineText(box) + QStringLiteral(" Nein: Diese Frage beantwortet --ja nicht."));
        return false;
    }
    if (manner.yes && box.text != lastYes) { // asked again at once, Ja did not help and never will
        lastYes = box.text;
        if (!manner.quiet)
            Tell(LineText(box) + QStringLiteral(" Ja (--ja)"));
        return true;
    }
    if (!console.canAsk()) {
        Tell(LineText(box)
            + QStringLiteral("\nNein: Hier kann niemand antworten. Mit --ja gilt jede Frage als bejaht."));
        return false;
    }
    for (;;) {
        WriteRaw(LineText(box) + (defaultYes ? QStringLiteral(" [J/n] ") : QStringLiteral(" [j/N] ")));
        std::optional<Console::Line> answer;
        console.readLine([&answer](const Console::Line &line) { answer = line; });
        const bool answered = PumpUntilAnswered([&answer] { return answer.has_value(); });
        console.stopReading();
        if (!answered || !*answer) // nobody is there any more, who could say Ja
            return false;
        if (const auto meant = MeaningOf(**answer, defaultYes))
            return *meant;
        Tell(QStringLiteral("Bitte mit ja oder nein antworten."));
    }
}

QString TerminalAsk::askText(const QString &, const QString &, const QString &)
{
    return {};
}

void TerminalAsk::showProgress(const QString &newText)
{
    text = newText;
    writeProgress();
}

void TerminalAsk::showAmount(const Amount &amount)
{
    amountText = QStringLiteral(" (%1 von %2%3)").arg(amount.done).arg(amount.all).arg(TimeLeft(amount.secondsLeft));
    writeProgress();
}

void TerminalAsk::writeProgress()
{
    if (manner.quiet || !console.errorIsTerminal())
        return;
    WriteRaw(QStringLiteral("\r\033[K") + text + amountText);
    visible = true;
}

void TerminalAsk::hideProgress()
{
    amountText.clear();
    if (visible)
        WriteRaw(QStringLiteral("\r\033[K"));
    visible = false;
}

} // namespace hr::cli
