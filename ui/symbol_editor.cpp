#include "ui/symbol_editor.h"

#include "handheld/discovery.h"
#include "handheld/transfer.h"
#include "platform/run_control.h"
#include "platform/text.h"
#include "symbols/bmp_file.h"
#include "symbols/editor/pixel_editor.h"
#include "symbols/pixel_picture.h"
#include "symbols/symbol_geometry.h"
#include "ui/build_controls.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/pickers.h"
#include "ui/picture_box.h"
#include "ui/picture_cache.h"
#include "ui/progress.h"
#include "ui/qt_frontend.h"

#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int NumberFieldCharacters = 7;

/// Why a description can't be part of a file name; empty when it can.
QString DescriptionError(const QString &description)
{
    const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    for (const QChar c : description) {
        if (forbidden.contains(c) || c.unicode() < u' ')
            return QStringLiteral("Die Kurzbeschreibung darf keines dieser Zeichen enthalten: / \\ : * ? \" < > |");
    }
    for (const char *marker : {"%ON%", "%OFF%", "%ROT%", "%GRN%"}) {
        if (description.contains(QLatin1String(marker), Qt::CaseInsensitive))
            return QStringLiteral("Die Kurzbeschreibung darf %1 nicht enthalten!").arg(QLatin1String(marker));
    }
    return {};
}

/// The picture in SpiBuf as it would stand in a file.
QPixmap PictureOfBuffer()
{
    QImage image(SymbolWidth, SymbolHeight, QImage::Format_Mono);
    image.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    for (int y = 0; y < SymbolHeight; ++y) {
        for (int x = 0; x < SymbolWidth; ++x)
            image.setPixel(x, SymbolHeight - 1 - y, GetColor_from_SPIBUF(x, y) == Black ? 1 : 0);
    }
    return QPixmap::fromImage(image);
}

} // namespace

const SymbolEditorLook &LokSymbolLook()
{
    static const SymbolEditorLook look{SymbolKind::Loco, QStringLiteral("Frame2"),
        QStringLiteral("Loksymbol ändern: "), QStringLiteral("Label7"), QStringLiteral("Label10"),
        QStringLiteral("0 .. 63"), QStringLiteral("LokSymNrTxt"), 63, -1, QStringLiteral("LokSym2Pic"),
        QStringLiteral("LeseLoksymbolBut"), QStringLiteral("Lese Loksymbol"), QStringLiteral("SchreibeLoksymbolBut"),
        QStringLiteral("Schreibe Loksymbol"), QStringLiteral("EditLokSymBut"), QStringLiteral("Edit Loksym."), {}, {},
        {}, false, 52, 20, QStringLiteral("Lese Loksymbol"), QStringLiteral("Schreibe Loksymbol")};
    return look;
}

const SymbolEditorLook &FktSymbolLook()
{
    static const SymbolEditorLook look{SymbolKind::Function, QStringLiteral("Frame3"),
        QStringLiteral("Funktionsymbol ändern:"), QStringLiteral("Label8"), QStringLiteral("Label18"),
        QStringLiteral("0..255"), QStringLiteral("FunksymTxt"), 255, 163, QStringLiteral("LokFktPic"),
        QStringLiteral("LeseFktSymBut"), QStringLiteral("Lese Fkt.-Symbol"), QStringLiteral("SchreibeFktSymBut"),
        QStringLiteral("Schreibe Fkt.-Symbol"), QStringLiteral("EditFktSymBut"), QStringLiteral("Edit Fkt-Sym."),
        QStringLiteral("Frame4"), QStringLiteral("ONOFF"), {QStringLiteral("ON"), QStringLiteral("OFF")}, false, 18,
        18, QStringLiteral("Lese Funktionssymbol"), QStringLiteral("Schreibe Funktionssymbol")};
    return look;
}

const SymbolEditorLook &MagSymbolLook()
{
    static const SymbolEditorLook look{SymbolKind::Accessory, QStringLiteral("MagSymFrame"),
        QStringLiteral("Mag.art.symbol ändern:"), QStringLiteral("Label9"), QStringLiteral("Label11"),
        QStringLiteral("0..255"), QStringLiteral("MagsymTxt"), 255, 27, QStringLiteral("MagPic"),
        QStringLiteral("LeseMagSymBut"), QStringLiteral("Lese Mag.-Symbol"), QStringLiteral("SchreibeMagSymBut"),
        QStringLiteral("Schreibe Mag.-Symbol"), QStringLiteral("EditMagSymBut"), QStringLiteral("Edit Mag-Sym."),
        QStringLiteral("Frame6"), QStringLiteral("ONOFFMag"), {QStringLiteral("Grün"), QStringLiteral("Rot")}, true,
        18, 18, QStringLiteral("Lese Mag.art.symbol"), QStringLiteral("Schreibe Funktionssymbol")};
    return look;
}

SymbolEditor::SymbolEditor(const SymbolEditorLook &editorLook, QWidget *parent)
    : QGroupBox(editorLook.frameCaption, parent)
    , look(editorLook)
    , numberTxt(NamedField(look.numberFieldName, QStringLiteral("Sym.Nr.:"), this))
    , preview(NamedPicture(look.pictureName, QStringLiteral("Vorschau"), look.pictureWidth, look.pictureHeight, this))
    , readBut(NamedButton(look.readButtonName, look.readCaption, this))
    , writeBut(NamedButton(look.writeButtonName, look.writeCaption, this))
    , editBut(NamedButton(look.editButtonName, look.editCaption, this))
{
    setObjectName(look.frameName);
    buildLayout();
    connectControls();
    numberChanged();
    picture.assign(look.kind == SymbolKind::Loco ? LokSymbolBytes + 1 : HalfSymbolBytes + 5, 0);
    picture.at(0) = look.kind == SymbolKind::Loco ? 23 : 6;
    picture.at(1) = look.kind == SymbolKind::Loco ? 15 : 13;
}

QWidget *SymbolEditor::buildNumberRow()
{
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *label = NamedLabel(look.numberLabelName, QStringLiteral("Sym.Nr.:"), row);
    label->setBuddy(numberTxt);
    numberTxt->setFixedWidth(numberTxt->fontMetrics().averageCharWidth() * NumberFieldCharacters);
    layout->addWidget(label);
    layout->addWidget(numberTxt);
    layout->addWidget(NamedLabel(look.rangeLabelName, look.rangeText, row));
    layout->addStretch();
    layout->addWidget(preview);
    return row;
}

QWidget *SymbolEditor::buildHalves()
{
    auto *frame = new QWidget(this);
    frame->setObjectName(look.halvesFrameName);
    auto *layout = new QHBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < look.halves.size(); ++i) {
        auto *button = new QRadioButton(look.halves.at(i), frame);
        button->setObjectName(look.halvesName + QString::number(i));
        button->setChecked(i == 0);
        halves += button;
        layout->insertWidget(look.secondHalfFirst ? 0 : i, button);
    }
    layout->addStretch();
    return frame;
}

void SymbolEditor::buildLayout()
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildNumberRow());
    if (!look.halves.isEmpty())
        layout->addWidget(buildHalves());
    auto *buttons = new QGridLayout;
    buttons->addWidget(readBut, 0, 0);
    buttons->addWidget(writeBut, 0, 1);
    buttons->addWidget(editBut, 1, 0);
    layout->addLayout(buttons);
    orderTabs();
}

/// As the eye reads: number, halves, buttons.
void SymbolEditor::orderTabs()
{
    QWidget *last = numberTxt;
    const auto next = [&last](QWidget *control) {
        setTabOrder(last, control);
        last = control;
    };
    for (int i = 0; i < halves.size(); ++i)
        next(halves.at(look.secondHalfFirst ? halves.size() - 1 - i : i));
    for (QPushButton *button : {readBut, writeBut, editBut})
        next(button);
}

int SymbolEditor::chosenHalf() const
{
    for (int i = 0; i < halves.size(); ++i) {
        if (halves.at(i)->isChecked())
            return i;
    }
    return 0;
}

void SymbolEditor::numberChanged()
{
    const int number = Val(numberTxt->text());
    writeBut->setEnabled(number > look.lastFixedNumber);
    if (look.lastFixedNumber >= 0)
        preview->setPicture(QPixmap());
    if (number > look.highestNumber)
        numberTxt->setText(QStringLiteral("??"));
}

void SymbolEditor::connectControls()
{
    numberTxt->installEventFilter(this);
    connect(numberTxt, &QLineEdit::textChanged, this, &SymbolEditor::numberChanged);
    connect(readBut, &QPushButton::clicked, this, &SymbolEditor::readSymbol);
    connect(editBut, &QPushButton::clicked, this, &SymbolEditor::editSymbol);
    connect(writeBut, &QPushButton::clicked, this, &SymbolEditor::writeSymbol);
}

void SymbolEditor::layPicture() const
{
    SetSymbolGeometry(look.kind);
    std::copy(picture.begin(), picture.end(), SpiBuf.begin() + WritePosition);
}

void SymbolEditor::keepPicture()
{
    std::copy_n(SpiBuf.begin() + WritePosition, picture.size(), picture.begin());
}

void SymbolEditor::showPreview()
{
    int result = 0;
    SaveSpibufToBmp(QString(), result);
    preview->setPicture(result == 0 ? FreshPictureOfFile(TemplatePath(SymbolWidth)) : PictureOfBuffer());
}

void SymbolEditor::readSymbol()
{
    const BusyScope busy;
    const int number = Val(numberTxt->text());
    const int half = chosenHalf();
    if (!busy.ok() || !HandheldConnected())
        return;
    const Progress progress(look.readText);
    ReadSymbol(look.kind, number, half);
    SetSymbolGeometry(look.kind);
    if (!Comm().isOpen() || WaitsMustEnd())
        return; // broken off: the picture shown before stays the one to be written
    keepPicture();
    showPreview();
    if (Val(numberTxt->text()) != number)
        preview->setPicture(QPixmap()); // the user typed on: the picture does not belong to that number
    WaitSeconds(StandardDelaySeconds);
}

void SymbolEditor::editSymbol()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    layPicture();
    {
        const WaitingWindow waiting(PixelEditorWindow());
        EditPicture();
    }
    keepPicture();
    showPreview();
}

bool SymbolEditor::saveToCatalogue(int number, int half, const QString &description)
{
    QString &entry =
        Katalog(look.kind).at(static_cast<size_t>(number)).at(static_cast<size_t>(CatalogueHalf(look.kind, half)));
    const QString name = QString::number(number) + u' ' + description + FileEnding(look.kind, half);
    const QString path = SymbolPath(look.kind, name);
    QDir().mkpath(QFileInfo(path).path());
    layPicture();
    int result = 0;
    SaveSpibufToBmp(path, result);
    if (result != 0)
        return false;
    // The old file goes only now that the new one is safe.
    const QString oldPath = entry.isEmpty() ? QString() : SymbolPath(look.kind, entry);
    if (!oldPath.isEmpty() && QFileInfo(oldPath) != QFileInfo(path))
        QFile::remove(oldPath);
    entry = name;
    RefreshPickerRow(look.kind, number);
    return true;
}

void SymbolEditor::writeSymbol()
{
    const BusyScope busy;
    // Taken now: what is typed or chosen while the search runs belongs to the next command.
    const int number = Val(numberTxt->text());
    const int half = chosenHalf();
    if (!busy.ok() || !HandheldConnected())
        return;
    const QString description =
        TheFrontend().askText(QStringLiteral("Kurzbeschreibung:"), QStringLiteral("Symbol Daten sichern"));
    if (description.isEmpty())
        return;
    if (const QString error = DescriptionError(description); !error.isEmpty()) {
        TheFrontend().showBox({error, QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    const Progress progress(look.writeText);
    if (!saveToCatalogue(number, half, description))
        return;
    layPicture();
    WriteSymbol(look.kind, number, half);
    WaitSeconds(StandardDelaySeconds);
}

void SymbolEditor::pickNumber()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const int chosen = PickSymbol(look.kind, Val(numberTxt->text()));
    if (chosen != NothingChosen)
        numberTxt->setText(QString::number(chosen));
}

bool SymbolEditor::eventFilter(QObject *watched, QEvent *event)
{
    const bool doubleClick = event->type() == QEvent::MouseButtonDblClick;
    const bool f4 = event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_F4;
    if (watched != numberTxt || !(doubleClick || f4))
        return QGroupBox::eventFilter(watched, event);
    // From the event loop: the picker waits, and the field must have finished with this event by then.
    TheEvents().post([this] { pickNumber(); });
    return true;
}
