#include "link/start_up.h"

#include "link/branding.h"
#include "link/message_layer.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "link/text_encoding.h"
#include "platform/run_control.h"
#include "platform/world.h"

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
    TheFrontend().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

void PrepareWindow()
{
    ReadSettings();
    TheFrontend().setLokDataMenuVisible(InterfaceType == InterfaceDirect);
    TheFrontend().showMainWindow();
    TheFrontend().setMainWindowTitle(TheBranding().windowTitle);
}

void Search(const StartUpSteps &steps)
{
    TheFrontend().showProgress(QStringLiteral("Suche Handregler!"));
    TheFrontend().setMainWindowEnabled(false);
    WaitSeconds(BeforeSearchSeconds);
    steps.searchHandheld();
    TheFrontend().hideProgress();
    if (!HandreglerGefunden)
        return;
    TheFrontend().setMainWindowEnabled(true);
    TheFrontend().raiseMainWindow();
}

/// One round: true when the program goes on in the main window or ends, false to begin again.
bool StartUpRound(const StartUpSteps &steps)
{
    PrepareWindow();
    ShowWarning();
    if (WaitsMustEnd() || HandreglerGefunden)
        return true;
    Search(steps);
    if (WaitsMustEnd() || HandreglerGefunden)
        return true;
    WaitSeconds(BeforeSelectionSeconds);
    return WaitsMustEnd() || !AskForSelection();
}

} // namespace

void Main(const StartUpSteps &steps)
{
    const BusyScope busy;
    TxLen = -1;
    HandheldMode = true;
    BuildZeichensatz();
    if (steps.buildCatalogues)
        steps.buildCatalogues();
    while (!StartUpRound(steps)) { }
}
