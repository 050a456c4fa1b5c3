#include "ui/backup/found_addresses.h"

#include "handheld/backup/number_list.h"
#include "handheld/known_locos.h"
#include "ui/backup/selection_window.h"
#include "ui/common/command.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/leavable_window.h"
#include "ui/widgets/window_keys.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace hr::ui
{

namespace
{

constexpr QSize StartSize(440, 320);

class FoundAddressesWindow : public LeavableWindow
{
public:
    FoundAddressesWindow()
        : countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
        , addressTxt(new QPlainTextEdit(this))
        , copyBut(NamedButton(QStringLiteral("KopierenBut"), QStringLiteral("Kopieren"), this))
        , listBut(NamedButton(QStringLiteral("ListeBut"), QStringLiteral("als Liste übernehmen"), this))
        , okButton(NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this))
    {
        setObjectName(QStringLiteral("LokSucheWin"));
        setWindowTitle(QStringLiteral("Gefundene Lokadressen"));
        addressTxt->setObjectName(QStringLiteral("AdressenTxt"));
        addressTxt->setAccessibleName(windowTitle());
        addressTxt->setReadOnly(true);
        addressTxt->setTabChangesFocus(true);
        auto *buttonRow = new QHBoxLayout;
        buttonRow->addWidget(copyBut);
        buttonRow->addWidget(listBut);
        buttonRow->addStretch();
        buttonRow->addWidget(okButton);
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(countLbl);
        layout->addWidget(addressTxt);
        layout->addLayout(buttonRow);
        resize(StartSize);
        connect(copyBut, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(TenPerLine(shown)); });
        connect(listBut, &QPushButton::clicked, this, &FoundAddressesWindow::takeAsList);
        listBut->setToolTip(QStringLiteral("trägt die Adressen in \"Daten sichern\" bei Lokdatensätze ein"));
        AltKey(listBut, Qt::Key_L);
        connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
        AltKey(copyBut, Qt::Key_K);
        AltKey(okButton, Qt::Key_O);
        setDefaultButton(okButton);
    }

    void load(const std::vector<int> &addresses)
    {
        countLbl->setText(CountText(addresses.size()));
        shown = addresses;
        QStringList lines;
        for (const int address : addresses)
            lines += QStringLiteral("%1\t%2").arg(QString::number(address), KnownLocoName(address)).trimmed();
        addressTxt->setPlainText(lines.join(u'\n'));
        copyBut->setEnabled(!addresses.empty());
        listBut->setEnabled(!addresses.empty());
        present();
        okButton->setFocus();
    }

private:
    void takeAsList()
    {
        const Command command; // refused while the selection window is waited for, which takes the list itself
        if (!LayLocoList(ShortList(shown, {}), command.ok()))
            return;
        countLbl->setText(QStringLiteral("%1 in \"Daten sichern\" übernommen").arg(CountText(shown.size())));
    }

    static QString CountText(size_t count)
    {
        if (count == 0)
            return QStringLiteral("Es wurde kein Lokdatensatz gefunden.");
        return count == 1 ? QStringLiteral("1 Lokdatensatz gefunden:")
                          : QStringLiteral("%1 Lokdatensätze gefunden:").arg(count);
    }

    std::vector<int> shown;
    QLabel *countLbl;
    QPlainTextEdit *addressTxt;
    QPushButton *copyBut;
    QPushButton *listBut;
    QPushButton *okButton;
};

std::unique_ptr<FoundAddressesWindow> foundWindow;

} // namespace

void ShowFoundAddresses(const std::vector<int> &addresses)
{
    if (!foundWindow)
        foundWindow = std::make_unique<FoundAddressesWindow>();
    foundWindow->load(addresses);
}

void ResetFoundAddresses()
{
    foundWindow.reset();
}

} // namespace hr::ui
