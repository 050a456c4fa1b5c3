#include "ui/common/connection.h"

#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "ui/common/desktop.h"

namespace hr::ui
{

namespace
{
bool sentBack = false; // the handheld was in service last and is in its operating mode again
std::function<void()> changed;
} // namespace

Service PresentService()
{
    if (TheLink().HandreglerGefunden)
        return Service::Connected;
    return sentBack && Comm().isOpen() ? Service::OperatingMode : Service::NoHandheld;
}

void OnConnectionChange(std::function<void()> show)
{
    changed = std::move(show);
}

void TellConnectionChange()
{
    if (changed)
        changed();
}

Outcome OpenPort()
{
    if (Comm().isOpen()) {
        ClosePort();
        return {};
    }
    while (!OpenLink().ok()) {
        TheAsk().hideProgress();
        if (WaitsMustEnd())
            return Outcome(End::ProgramEnds);
        const Selected selected = AskForSelection();
        if (selected != Selected::TryAgain)
            return Outcome(selected == Selected::EndProgram ? End::ProgramEnds : End::NotOpened);
        TheAsk().showProgress(QStringLiteral("Suche Handregler!")); // it goes on with the new settings
    }
    return {};
}

Selected AskForSelection()
{
    SelectionAnswer = SelectionOpen;
    SelectionAwaited = true;
    TheDesktop().showSelectionWindow();
    const bool answered = PumpUntil([] { return SelectionAnswer != SelectionOpen; });
    SelectionAwaited = false;
    TheDesktop().hideSelectionWindow();
    TellConnectionChange();
    if (answered && SelectionAnswer == SelectionRetry)
        return Selected::TryAgain;
    if (answered && SelectionAnswer == SelectionWithout)
        return Selected::WithoutHandheld;
    RequestEnd();
    return Selected::EndProgram;
}

bool PortReady()
{
    if (Comm().isOpen())
        return true;
    if (!OpenPort().ok())
        return false;
    if (!Comm().isOpen() && TheLink().InterfaceType != InterfaceNone) {
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
    sentBack = false;
    if (PortReady())
        ShowHandheld(FindHandheld().value);
    TheAsk().hideProgress(); // of a further try
    sentBack = false;        // one that gave no sure answer was sent back, but nobody knows what is there
    TheDesktop().setMainWindowTitle(TitleWithHandheld());
    TellConnectionChange();
}

void FollowService()
{
    TheLink().onServiceEnds([] {
        sentBack = Comm().isOpen();
        ShowHandheld({});
        TheDesktop().setMainWindowTitle(TitleWithHandheld());
        TellConnectionChange();
    });
}

bool HandheldConnected()
{
    if (!TheLink().HandreglerGefunden)
        ConnectHandheld();
    return TheLink().HandreglerGefunden && !WaitsMustEnd();
}

} // namespace hr::ui
