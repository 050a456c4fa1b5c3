#include "ui/symbols/symbol_editor.h"

#include "platform/files.h"
#include "platform/text.h"
#include "platform/world.h"
#include "shown/catalogue.h"
#include "shown/record.h"
#include "symbols/bmp_file.h"
#include "ui/common/command.h"
#include "ui/common/deeds.h"
#include "ui/common/pickers.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/symbols/pixel_editor.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/picture_box.h"
#include "ui/widgets/window_keys.h"

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

#include <array>

namespace hr::ui
{

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

/// Removes the file that a new one of the same number replaces; a failure is told.
void RemoveOldFile(const QString &path)
{
    if (!QFile::exists(path) || QFile::remove(path))
        return;
    TheAsk().showBox({QStringLiteral("Die alte Datei %1 kann nicht gelöscht werden!\r"
                                     "Bitte löschen Sie sie selbst, sonst erscheint vielleicht ihr Bild.")
                          .arg(QDir::toNativeSeparators(path)),
        QStringLiteral("Fehler!"), BoxIcon::Critical});
}

} // namespace

const SymbolEditorLook &LokSymbolLook()
{
    static const SymbolEditorLook look{.kind = SymbolKind::Loco,
        .frameName = QStringLiteral("Frame2"),
        .frameCaption = QStringLiteral("Loksymbol ändern: "),
        .numberLabelName = QStringLiteral("Label7"),
        .rangeLabelName = QStringLiteral("Label10"),
        .rangeText = QStringLiteral("0 .. 63"),
        .numberFieldName = QStringLiteral("LokSymNrTxt"),
        .highestNumber = 63,
        .lastFixedNumber = -1,
        .pictureName = QStringLiteral("LokSym2Pic"),
        .readButtonName = QStringLiteral("LeseLoksymbolBut"),
        .readCaption = QStringLiteral("Lese Loksymbol"),
        .writeButtonName = QStringLiteral("SchreibeLoksymbolBut"),
        .writeCaption = QStringLiteral("Schreibe Loksymbol"),
        .editButtonName = QStringLiteral("EditLokSymBut"),
        .editCaption = QStringLiteral("Edit Loksym."),
        .halvesFrameName = {},
        .halvesName = {},
        .halves = {},
        .secondHalfFirst = false,
        .pictureWidth = 52,
        .pictureHeight = 20,
        .readText = QStringLiteral("Lese Loksymbol"),
        .writeText = QStringLiteral("Schreibe Loksymbol")};
    return look;
}

const SymbolEditorLook &FktSymbolLook()
{
    static const SymbolEditorLook look{.kind = SymbolKind::Function,
        .frameName = QStringLiteral("Frame3"),
        .frameCaption = QStringLiteral("Funktionsymbol ändern:"),
        .numberLabelName = QStringLiteral("Label8"),
        .rangeLabelName = QStringLiteral("Label18"),
        .rangeText = QStringLiteral("0..255"),
        .numberFieldName = QStringLiteral("FunksymTxt"),
        .highestNumber = 255,
        .lastFixedNumber = LastBuiltInSymbol(SymbolKind::Function),
        .pictureName = QStringLiteral("LokFktPic"),
        .readButtonName = QStringLiteral("LeseFktSymBut"),
        .readCaption = QStringLiteral("Lese Fkt.-Symbol"),
        .writeButtonName = QStringLiteral("SchreibeFktSymBut"),
        .writeCaption = QStringLiteral("Schreibe Fkt.-Symbol"),
        .editButtonName = QStringLiteral("EditFktSymBut"),
        .editCaption = QStringLiteral("Edit Fkt-Sym."),
        .halvesFrameName = QStringLiteral("Frame4"),
        .halvesName = QStringLiteral("ONOFF"),
        .halves = {QStringLiteral("ON"), QStringLiteral("OFF")},
        .secondHalfFirst = false,
        .pictureWidth = 18,
        .pictureHeight = 18,
        .readText = QStringLiteral("Lese Funktionssymbol"),
        .writeText = QStringLiteral("Schreibe Funktionssymbol")};
    return look;
}

const SymbolEditorLook &MagSymbolLook()
{
    static const SymbolEditorLook look{.kind = SymbolKind::Accessory,
        .frameName = QStringLiteral("MagSymFrame"),
        .frameCaption = QStringLiteral("Mag.art.symbol ändern:"),
        .numberLabelName = QStringLiteral("Label9"),
        .rangeLabelName = QStringLiteral("Label11"),
        .rangeText = QStringLiteral("0..255"),
        .numberFieldName = QStringLiteral("MagsymTxt"),
        .highestNumber = 255,
        .lastFixedNumber = LastBuiltInSymbol(SymbolKind::Accessory),
        .pictureName = QStringLiteral("MagPic"),
        .readButtonName = QStringLiteral("LeseMagSymBut"),
        .readCaption = QStringLiteral("Lese Mag.-Symbol"),
        .writeButtonName = QStringLiteral("SchreibeMagSymBut"),
        .writeCaption = QStringLiteral("Schreibe Mag.-Symbol"),
        .editButtonName = QStringLiteral("EditMagSymBut"),
        .editCaption = QStringLiteral("Edit Mag-Sym."),
        .halvesFrameName = QStringLiteral("Frame6"),
        .halvesName = QStringLiteral("ONOFFMag"),
        .halves = {QStringLiteral("Grün"), QStringLiteral("Rot")},
        .secondHalfFirst = true,
        .pictureWidth = 18,
        .pictureHeight = 18,
        .readText = QStringLiteral("Lese Mag.art.symbol"),
        .writeText = QStringLiteral("Schreibe Funktionssymbol")}; // the function symbols' text, on purpose
    return look;
}

SymbolEditor::SymbolEditor(const SymbolEditorLook &editorLook, QWidget *parent)
    : QGroupBox(editorLook.frameCaption, parent)
    , look(editorLook)
    , numberTxt(NamedField(look.numberFieldName, QStringLiteral("Sym.Nr.: ") + KindWord(look.kind), this))
    , preview(NamedPicture(look.pictureName, QStringLiteral("Vorschau"), look.pictureWidth, look.pictureHeight, this))
    , readBut(NamedButton(look.readButtonName, look.readCaption, this))
    , writeBut(NamedButton(look.writeButtonName, look.writeCaption, this))
    , editBut(NamedButton(look.editButtonName, look.editCaption, this))
    , doubtLbl(NamedDoubtLabel(look.writeButtonName + QStringLiteral("Lbl"), this))
    , changedLbl(NamedChangedLabel(look.writeButtonName + QStringLiteral("GeaendertLbl"), this))
    , whatLbl(NamedRemark(look.writeButtonName + QStringLiteral("WasLbl"), this))
    , picture(EmptyPicture(look.kind))
    , held(picture)
{
    setObjectName(look.frameName);
    buildLayout();
    connectControls();
    const int row = static_cast<int>(look.kind);
    AltKey(numberTxt, static_cast<Qt::Key>(Qt::Key_1 + row));
    AltKey(readBut, static_cast<Qt::Key>(Qt::Key_4 + row));
    AltKey(writeBut, static_cast<Qt::Key>(Qt::Key_7 + row));
    AltKey(editBut, std::array{Qt::Key_K, Qt::Key_U, Qt::Key_G}.at(static_cast<size_t>(row)));
    numberChanged();
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
        connect(button, &QRadioButton::toggled, preview, [this] {
            preview->setPicture(QPixmap());
            explain();
        });
        halves += button;
        layout->insertWidget(look.secondHalfFirst ? 0 : i, button);
    }
    layout->addStretch();
    TabToChosen(halves);
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
    buttons->addWidget(writeBut, 0, 1, Qt::AlignLeft); // as wide as the others
    buttons->addWidget(editBut, 1, 0);
    auto *marks = new QVBoxLayout;
    marks->setSpacing(0);
    for (QLabel *mark : {doubtLbl, changedLbl}) {
        KeepPlace(mark);
        marks->addWidget(mark);
    }
    buttons->addLayout(marks, 1, 1);
    buttons->addWidget(whatLbl, 2, 0, 1, 2);
    buttons->setColumnStretch(2, 1); // they keep their size in a wide window
    layout->addLayout(buttons);
    orderTabs();
}

void SymbolEditor::AlignButtons(const QList<SymbolEditor *> &editors)
{
    QList<QPushButton *> buttons;
    for (const SymbolEditor *editor : editors)
        buttons << editor->readBut << editor->writeBut << editor->editBut;
    SameWidth(buttons);
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
    explain();
}

void SymbolEditor::connectControls()
{
    numberTxt->installEventFilter(this);
    connect(numberTxt, &QLineEdit::textChanged, this, &SymbolEditor::numberChanged);
    connect(readBut, &QPushButton::clicked, this, &SymbolEditor::readSymbol);
    connect(editBut, &QPushButton::clicked, this, &SymbolEditor::editSymbol);
    connect(writeBut, &QPushButton::clicked, this, &SymbolEditor::writeSymbol);
}

SymbolEditor::Shown SymbolEditor::shownNow() const
{
    return {Val(numberTxt->text()), chosenHalf(), picture, complete};
}

void SymbolEditor::showPreview()
{
    static_cast<void>(SaveBmp(RowsOf(picture), picture.geometry, QString())); // told once; the preview needs no file
    showPicture();
}

void SymbolEditor::showPicture()
{
    preview->setPicture(QPixmap::fromImage(ImageOf(picture)));
}

SymbolEditor::Source SymbolEditor::sourceNow() const
{
    return {Val(numberTxt->text()), chosenHalf()};
}

QString SymbolEditor::unwritten() const
{
    const bool drawn = RowsOf(picture) != RowsOf(held);
    return drawn || !sure ? SymbolWords(look.kind, sourceNow().number, sourceNow().half) : QString();
}

/// What a write would take, when it is not the picture of the symbol that is chosen.
QString SymbolEditor::whatGoes() const
{
    if (source.number < 0 || source == sourceNow())
        return {};
    QString half;
    if (!halves.isEmpty())
        half = u' ' + halves.at(source.half)->text();
    return QStringLiteral("geschrieben wird: Bild von %1%2").arg(source.number).arg(half);
}

/// Shows what stands between picture and handheld, and why nothing can be written.
void SymbolEditor::explain()
{
    whatLbl->setText(whatGoes());
    changedLbl->setVisible(!unwritten().isEmpty());
    const QString reason = writeBut->isEnabled()
        ? QString()
        : QStringLiteral("frei sind %1 bis %2").arg(look.lastFixedNumber + 1).arg(look.highestNumber);
    writeBut->setToolTip(reason);
    writeBut->setAccessibleDescription(reason);
}

void SymbolEditor::readSymbol()
{
    const CommandOn command([this] { return shownNow(); });
    if (!command.connected())
        return;
    const Progress progress(look.readText);
    const Shown &asked = command.shown;
    const Result<Picture> read = ReadPicture(SpiBuf, look.kind, asked.number, asked.half);
    if (read.outcome.brokenOff())
        return; // the picture shown before stays the one to be written
    picture = read.value;
    held = picture;
    sure = true;
    source = {asked.number, asked.half};
    complete = read.ok();
    doubtLbl->setVisible(!complete);
    explain();
    if (read.ok())
        NoteDeed(SymbolWords(look.kind, asked.number, asked.half) + QStringLiteral(" gelesen"));
    showPreview();
    if (Val(numberTxt->text()) != asked.number)
        preview->setPicture(QPixmap()); // the user typed on: the picture does not belong to that number
    WaitSeconds(StandardDelaySeconds);
}

void SymbolEditor::editSymbol()
{
    const Command command;
    if (!command.ok())
        return;
    picture = EditPicture(picture);
    if (source.number < 0)
        source = sourceNow();
    explain();
    showPreview();
}

/// The new file is written first; the old one of the same number goes only when that is safe.
bool SymbolEditor::saveToCatalogue(const Shown &shown, const QString &description) const
{
    const int half = CatalogueHalf(look.kind, shown.half);
    const QString old = Katalog(look.kind).at(static_cast<size_t>(shown.number)).at(static_cast<size_t>(half));
    const QString name = QString::number(shown.number) + u' ' + description + FileEnding(look.kind, shown.half);
    const QString path = SymbolPath(look.kind, name);
    QDir().mkpath(QFileInfo(path).path());
    if (!SaveBmp(RowsOf(shown.picture), shown.picture.geometry, path))
        return false;
    EnterSymbolFile(look.kind, shown.number, half, name);
    const QString oldPath = SymbolPath(look.kind, old);
    if (CarriesNumber(old, shown.number) && !IsSameFile(oldPath, path))
        RemoveOldFile(oldPath);
    return true;
}

void SymbolEditor::writeSymbol()
{
    const CommandOn command([this] { return shownNow(); });
    Shown shown = command.shown;
    if (!command.mayWrite())
        return;
    if (!shown.complete && !command.mayWriteDoubtful(QStringLiteral("das Bild")))
        return;
    const QString proposal = refused.isEmpty() ? SymbolName(look.kind, shown.number) : refused;
    const QString description =
        TheAsk().askText(QStringLiteral("Kurzbeschreibung:"), QStringLiteral("Symbol Daten sichern"), proposal);
    if (description.isEmpty())
        return;
    const QString error = DescriptionError(description);
    refused = error.isEmpty() ? QString() : description;
    if (!error.isEmpty()) {
        TheAsk().showBox({error, QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    if (!command.connected()) // the port may have gone meanwhile: then nothing changes on the disk either
        return;
    const Progress progress(look.writeText);
    LaySizeBytes(shown.picture);
    if (!saveToCatalogue(shown, description))
        return;
    const Outcome written =
        WritePicture(SpiBuf, look.kind, shown.number, shown.half, shown.picture, Patience::Agreed).outcome;
    showWritten(shown, written);
    if (written.ok())
        NoteDeed(SymbolWords(look.kind, shown.number, shown.half) + QStringLiteral(" geschrieben"));
    if (!written.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

/// After a write the preview shows what the handheld holds, unless the user has gone on to another symbol.
void SymbolEditor::showWritten(const Shown &shown, const Outcome &written)
{
    held = shown.picture;
    sure = written.ok();
    if (RowsOf(picture) == RowsOf(held)) {
        source = {shown.number, shown.half};
        if (source == sourceNow())
            showPicture();
    }
    explain();
}

void SymbolEditor::pickNumber()
{
    const Command command;
    if (!command.ok())
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

} // namespace hr::ui
