#include "ui/common/start_up.h"

#include "handheld/text_encoding.h"
#include "link/message_layer.h"
#include "link/open_link.h"
#include "program/ask.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "ui/common/connection.h"
#include "ui/common/desktop.h"
#include "ui/common/progress.h"

namespace hr::ui
{

namespace
{

constexpr double BeforeSearchSeconds = 0.1;
constexpr double BeforeSelectionSeconds = 1;

void ShowWarning()
{
    const QString blanks = QStringLiteral("   ");
    const QString text = blanks + u'\r' + TheBranding().warningLine + u'\r'
        + QStringLiteral("wenn die Daten ausgelesen oder geändert werden sollen.") + u"\r \r"
        + QStringLiteral("Bitte verbinden Sie jetzt einen Handregler mit LocoNet!") + u'\r' + blanks;
    TheAsk().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

void PrepareWindow()
{
    TheLink().use(ReadSettings());
    TheDesktop().setLokDataMenuVisible(TheLink().InterfaceType == InterfaceDirect);
    TheDesktop().showMainWindow();
    TheDesktop().setMainWindowTitle(TheBranding().windowTitle);
}

void Search()
{
    {
        const Progress progress(QStringLiteral("Suche Handregler!"));
        TheDesktop().setMainWindowEnabled(false);
        WaitSeconds(BeforeSearchSeconds);
        ConnectHandheld();
    }
    if (!TheLink().HandreglerGefunden)
        return;
    TheDesktop().setMainWindowEnabled(true);
    TheDesktop().raiseMainWindow();
}

/// One round: true when the program goes on in the main window or ends, false to begin again.
bool StartUpRound()
{
    PrepareWindow();
    ShowWarning();
    if (WaitsMustEnd() || TheLink().HandreglerGefunden)
        return true;
    Search();
    if (WaitsMustEnd() || TheLink().HandreglerGefunden)
        return true;
    WaitSeconds(BeforeSelectionSeconds);
    if (WaitsMustEnd())
        return true;
    const Selected selected = AskForSelection();
    if (selected == Selected::WithoutHandheld) {
        TheDesktop().setMainWindowEnabled(true);
        TheDesktop().raiseMainWindow();
    }
    return selected != Selected::TryAgain;
}

} // namespace

void Main()
{
    const BusyScope busy;
    TheMessages().dropAll(); // nothing to send, nothing awaited
    TheMessages().setDownloadAnswerCheck(nullptr);
    FollowService();
    ScanCatalogues();
    while (!StartUpRound()) { }
}

} // namespace hr::ui
