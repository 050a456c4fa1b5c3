#include "ui/info_zeichensatz.h"

#include "ui/widgets/build_controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

QStringList Texts()
{
    return {QStringLiteral("Mögliche Zeichen:"), QStringLiteral("0 1 2 3 4 5 6 7 8 9"),
        QStringLiteral("A B C D E F G H I J K L M N O P Q R S T U V W X Y Z Ä Ö Ü"), QStringLiteral("Sonderzeichen:"),
        QStringLiteral("Leerzeichen  +  -  .  :  /  =  _  ? "), QStringLiteral("<   = Pfeil nach links"),
        QStringLiteral(">   = Pfeil nach rechts"), QStringLiteral("|    = Pfeil nach unten  "),
        QStringLiteral("^   = Pfeil nach oben"), QStringLiteral("]    =  Zeichen für die Enter Taste")};
}

bool IsHeading(const QString &text)
{
    return text.endsWith(u':') && !text.contains(u'+');
}

} // namespace

InfoZeichensatz::InfoZeichensatz()
{
    setObjectName(QStringLiteral("InfoZeichensatz"));
    setWindowTitle(QStringLiteral("Zeichensatz:"));
    auto *layout = new QVBoxLayout(this);
    int number = 0;
    for (const QString &text : Texts()) {
        auto *label = NamedLabel(QStringLiteral("Label%1").arg(++number), text, this);
        if (IsHeading(text)) {
            QFont bold = label->font();
            bold.setBold(true);
            label->setFont(bold);
            label->setContentsMargins(0, number == 1 ? 0 : label->fontMetrics().height() / 2, 0, 0);
        }
        layout->addWidget(label);
    }
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    layout->addLayout(buttonRow);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
    setDefaultButton(okButton);
}

} // namespace hr::ui
