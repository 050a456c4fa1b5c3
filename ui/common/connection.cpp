#include "ui/common/connection.h"

#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "ui/common/desktop.h"

namespace hr::ui
{

Outcome OpenPort()
{
    if (Comm().isOpen()) {
        ClosePort();
        return {};
    }
    while (!OpenLink().ok()) {
        TheAsk().hideProgress();
        if (WaitsMustEnd() || !AskForSelection())
            return Outcome(End::ProgramEnds);
        TheAsk().showProgress(QStringLiteral("Suche Handregler!")); // it goes on with the new settings
    }
    return {};
}

bool AskForSelection()
{
    SelectionAnswer = 0;
    SelectionAwaited = true;
    TheDesktop().showSelectionWindow();
    const bool answered = PumpUntil([] { return SelectionAnswer != 0; });
    SelectionAwaited = false;
    TheDesktop().hideSelectionWindow();
    if (answered && SelectionAnswer == 1)
        return true;
    RequestEnd();
    return false;
}

bool PortReady()
{
    if (Comm().isOpen())
        return true;
    if (!OpenPort().ok())
        return false;
    if (!Comm().isOpen() && InterfaceType != InterfaceNone) {
        TheAsk().showBox(
            {QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"), BoxIcon::Critical});
    }
    return Comm().isOpen();
}

void ConnectHandheld()
{
    if (WaitsMustEnd())
        return;
    ShowHandheld({}); // whatever was there before may not be there now
    if (PortReady())
        ShowHandheld(FindHandheld().value);
    TheAsk().hideProgress(); // of a further try
    TheDesktop().setMainWindowTitle(TitleWithHandheld());
}

void FollowService()
{
    OnServiceEnds([] {
        ShowHandheld({});
        TheDesktop().setMainWindowTitle(TitleWithHandheld());
    });
}

bool HandheldConnected()
{
    if (!HandreglerGefunden)
        ConnectHandheld();
    return HandreglerGefunden && !WaitsMustEnd();
}

} // namespace hr::ui
