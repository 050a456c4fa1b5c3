#include "ui/backup/found_addresses.h"

#include "handheld/backup/number_list.h"
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
        buttonRow->addStretch();
        buttonRow->addWidget(okButton);
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(countLbl);
        layout->addWidget(addressTxt);
        layout->addLayout(buttonRow);
        resize(StartSize);
        connect(copyBut, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(addressTxt->toPlainText()); });
        connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
        AltKey(copyBut, Qt::Key_K);
        AltKey(okButton, Qt::Key_O);
        setDefaultButton(okButton);
    }

    void load(const std::vector<int> &addresses)
    {
        countLbl->setText(CountText(addresses.size()));
        addressTxt->setPlainText(TenPerLine(addresses));
        copyBut->setEnabled(!addresses.empty());
        present();
        okButton->setFocus();
    }

private:
    static QString CountText(size_t count)
    {
        if (count == 0)
            return QStringLiteral("Es wurde kein Lokdatensatz gefunden.");
        return count == 1 ? QStringLiteral("1 Lokdatensatz gefunden:")
                          : QStringLiteral("%1 Lokdatensätze gefunden:").arg(count);
    }

    QLabel *countLbl;
    QPlainTextEdit *addressTxt;
    QPushButton *copyBut;
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
