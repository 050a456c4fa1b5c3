#include "ui/backup/selection_window.h"

#include "link/cadence.h"
#include "platform/text.h"
#include "program/run_control.h"
#include "ui/common/desktop.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

enum Column { KindColumn, AllColumn, ListColumn, LimitColumn };
constexpr int SearchRow = NumberedKindCount;
constexpr int ListCharacters = 28;
constexpr int AddressCharacters = 6;
constexpr int HintLines = 3;

/// Named by its key in the kept selection.
QCheckBox *KeyCheck(const QString &key, const QString &caption, QWidget *parent)
{
    return NamedCheck(key + QStringLiteral("Chk"), caption, parent);
}

/// The check box of a table.
QCheckBox *TableCheck(RecordKind kind, QWidget *parent)
{
    return KeyCheck(RowOf(kind).selectionKey, RowOf(kind).caption, parent);
}

void SetWidthInCharacters(QWidget *field, int characters)
{
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance(u'0') * characters);
}

/// 0 when the text is not a plain number: no loco has that address.
int AddressIn(const QLineEdit *field)
{
    const QString text = field->text().trimmed();
    const int address = Val(text);
    return QString::number(address) == text ? address : 0;
}

SelectionWindow *openWindow = nullptr; // while the user chooses

bool IsAddress(int number)
{
    return number >= FirstLoco && number <= LastLoco;
}

} // namespace

SelectionWindow::SelectionWindow()
    : LeavableWindow(nullptr, Qt::Dialog)
    , lokSucheChk(KeyCheck(QStringLiteral("LokSuche"), QStringLiteral("Lokdatensätze suchen"), this))
    , startTxt(NamedField(QStringLiteral("LokSucheAdrStartTxt"), QStringLiteral("Suche von Adresse"), this))
    , stopTxt(NamedField(QStringLiteral("LokSucheAdrStopTxt"), QStringLiteral("Suche bis Adresse"), this))
    , fsDatenChk(TableCheck(RecordKind::RouteTable, this))
    , magSymZuordChk(TableCheck(RecordKind::AssignmentTable, this))
    , magListeChk(TableCheck(RecordKind::PlaceTable, this))
    , hintLbl(NamedLabel(QStringLiteral("HinweisLbl"), QString(), this))
    , allButton(NamedButton(QStringLiteral("AllesBut"), QStringLiteral("Alles"), this))
    , okButton(NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this))
    , cancelButton(NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this))
{
    setObjectName(QStringLiteral("SicherungWin"));
    setWindowTitle(QStringLiteral("Daten sichern"));
    buildLayout();
    connectControls();
}

void SelectionWindow::buildNumberedRow(QGridLayout *grid, NumberedKind kind)
{
    const KindRow &look = RowOfChoice(kind);
    const int gridRow = kind == LokDatenList ? 0 : kind + 1; // the search comes after the list of locos
    NumberedRow &row = rows.at(kind);
    row.wanted = KeyCheck(look.selectionKey, look.caption, this);
    row.list =
        NamedField(look.selectionKey + QStringLiteral("Txt"), look.caption + QStringLiteral(", Nummern"), this);
    SetWidthInCharacters(row.list, ListCharacters);
    grid->addWidget(row.wanted, gridRow, KindColumn);
    if (!look.allKey.isEmpty()) {
        row.all = KeyCheck(look.allKey, QStringLiteral("alle"), this);
        row.all->setAccessibleName(look.caption + QStringLiteral(", alle"));
        grid->addWidget(row.all, gridRow, AllColumn);
    }
    grid->addWidget(row.list, gridRow, ListColumn);
    grid->addWidget(
        new QLabel(QStringLiteral("%1 .. %2").arg(look.lowest).arg(look.highest), this), gridRow, LimitColumn);
}

void SelectionWindow::buildSearchRow(QGridLayout *grid)
{
    grid->addWidget(lokSucheChk, 1, KindColumn);
    auto *fields = new QHBoxLayout;
    fields->addWidget(new QLabel(QStringLiteral("von Adresse"), this));
    fields->addWidget(startTxt);
    fields->addWidget(new QLabel(QStringLiteral("bis"), this));
    fields->addWidget(stopTxt);
    for (QLineEdit *field : {startTxt, stopTxt})
        SetWidthInCharacters(field, AddressCharacters);
    grid->addLayout(fields, 1, ListColumn);
    grid->addWidget(new QLabel(QStringLiteral("%1 .. %2").arg(FirstLoco).arg(LastLoco), this), 1, LimitColumn);
}

void SelectionWindow::buildBlockRows(QGridLayout *grid)
{
    int row = SearchRow + 1;
    for (QCheckBox *box : {fsDatenChk, magSymZuordChk, magListeChk})
        grid->addWidget(box, row++, KindColumn, 1, -1);
}

void SelectionWindow::buildLayout()
{
    auto *grid = new QGridLayout;
    buildNumberedRow(grid, LokDatenList);
    buildSearchRow(grid);
    for (const NumberedKind kind : {LokSymbolList, FktSymbolList, MagSymbolList})
        buildNumberedRow(grid, kind);
    buildBlockRows(grid);
    allButton->setToolTip(QStringLiteral("alle Lokdatensätze (durch Suchen), alle Symbole und alle Tabellen"));
    connect(allButton, &QPushButton::clicked, this, [this] { lay(EverythingSelected()); });
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(allButton);
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    buttonRow->addWidget(cancelButton);
    hintLbl->setWordWrap(true);
    hintLbl->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    hintLbl->setMinimumHeight(hintLbl->fontMetrics().lineSpacing() * HintLines);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(new QLabel(QStringLiteral("Nummern und Bereiche, zum Beispiel: 1-5,8"), this));
    layout->addWidget(hintLbl);
    layout->addLayout(buttonRow);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(cancelButton, &QPushButton::clicked, this, [this] { answer(false); });
    setTabOrders();
}

/// As the eye reads: line by line.
void SelectionWindow::setTabOrders()
{
    QList<QWidget *> order{rows.at(LokDatenList).wanted, rows.at(LokDatenList).list, lokSucheChk, startTxt, stopTxt};
    for (const NumberedKind kind : {LokSymbolList, FktSymbolList, MagSymbolList})
        order << rows.at(kind).wanted << rows.at(kind).all << rows.at(kind).list;
    TabInOrder(order << fsDatenChk << magSymZuordChk << magListeChk << allButton << okButton << cancelButton);
}

void SelectionWindow::connectControls()
{
    for (const QCheckBox *box : {lokSucheChk, fsDatenChk, magSymZuordChk, magListeChk})
        connect(box, &QCheckBox::toggled, this, &SelectionWindow::check);
    for (const QLineEdit *field : {startTxt, stopTxt})
        connect(field, &QLineEdit::textChanged, this, &SelectionWindow::check);
    // Who types numbers or chooses all of them wants that kind.
    for (const NumberedRow &row : rows) {
        connect(row.wanted, &QCheckBox::toggled, this, &SelectionWindow::check);
        connect(row.list, &QLineEdit::textChanged, this, &SelectionWindow::check);
        connect(row.list, &QLineEdit::textEdited, row.wanted, [&row] { row.wanted->setChecked(true); });
        if (row.all == nullptr)
            continue;
        connect(row.all, &QCheckBox::toggled, this, &SelectionWindow::check);
        connect(row.all, &QCheckBox::clicked, row.wanted, [&row](bool all) {
            if (all)
                row.wanted->setChecked(true);
        });
    }
    for (QLineEdit *field : {startTxt, stopTxt})
        connect(field, &QLineEdit::textEdited, lokSucheChk, [this] { lokSucheChk->setChecked(true); });
    connect(okButton, &QPushButton::clicked, this, [this] { answer(true); });
    setDefaultButton(okButton);
    addKeys();
}

/// With Alt, as the user guide lists them.
void SelectionWindow::addKeys()
{
    const std::initializer_list<std::pair<QWidget *, Qt::Key>> keys{{rows.at(LokDatenList).wanted, Qt::Key_L},
        {lokSucheChk, Qt::Key_S}, {rows.at(LokSymbolList).wanted, Qt::Key_Y},
        {rows.at(FktSymbolList).wanted, Qt::Key_F}, {rows.at(MagSymbolList).wanted, Qt::Key_M},
        {fsDatenChk, Qt::Key_R}, {magSymZuordChk, Qt::Key_Z}, {magListeChk, Qt::Key_I}, {allButton, Qt::Key_E},
        {okButton, Qt::Key_O}, {cancelButton, Qt::Key_A}};
    for (const auto &[control, key] : keys)
        AltKey(control, key);
}

void SelectionWindow::lay(const BackupSelection &selection)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        rows.at(i).wanted->setChecked(selection.numbered.at(i).wanted);
        rows.at(i).list->setText(selection.numbered.at(i).list);
        if (rows.at(i).all != nullptr)
            rows.at(i).all->setChecked(selection.numbered.at(i).all);
    }
    lokSucheChk->setChecked(selection.lokSuche);
    startTxt->setText(QString::number(selection.lokSucheStart));
    stopTxt->setText(QString::number(selection.lokSucheStop));
    fsDatenChk->setChecked(selection.fsDaten);
    magSymZuordChk->setChecked(selection.magSymZuord);
    magListeChk->setChecked(selection.magListe);
    check();
}

void SelectionWindow::open(const BackupSelection &selection)
{
    lay(selection);
    present();
    rows.at(LokDatenList).wanted->setFocus();
}

BackupSelection SelectionWindow::selection() const
{
    BackupSelection chosen;
    for (size_t i = 0; i < rows.size(); ++i) {
        const NumberedRow &row = rows.at(i);
        chosen.numbered.at(i) = {
            row.wanted->isChecked(), row.all != nullptr && row.all->isChecked(), row.list->text().simplified()};
    }
    chosen.fsDaten = fsDatenChk->isChecked();
    chosen.magSymZuord = magSymZuordChk->isChecked();
    chosen.magListe = magListeChk->isChecked();
    chosen.lokSuche = lokSucheChk->isChecked();
    chosen.lokSucheStart = AddressIn(startTxt);
    chosen.lokSucheStop = AddressIn(stopTxt);
    return chosen;
}

void SelectionWindow::layLocoList(const QString &list)
{
    rows.at(LokDatenList).wanted->setChecked(true);
    rows.at(LokDatenList).list->setText(list);
    lokSucheChk->setChecked(false);
}

QStringList SelectionWindow::markFaults(const BackupSelection &chosen)
{
    QStringList faults;
    for (const NumberedKind kind : {LokDatenList, LokSymbolList, FktSymbolList, MagSymbolList}) {
        const QString fault = ListFault(chosen, kind);
        MarkField(rows.at(kind).list, fault);
        if (!fault.isEmpty())
            faults += RowOfChoice(kind).caption + QStringLiteral(": ") + fault;
    }
    const QString fault = SearchFault(chosen);
    const bool onlyStopWrong = IsAddress(chosen.lokSucheStart) && !IsAddress(chosen.lokSucheStop);
    const bool onlyStartWrong = !IsAddress(chosen.lokSucheStart) && IsAddress(chosen.lokSucheStop);
    MarkField(startTxt, onlyStopWrong ? QString() : fault);
    MarkField(stopTxt, onlyStartWrong ? QString() : fault);
    if (!fault.isEmpty())
        faults += QStringLiteral("Lokdatensätze suchen: ") + fault;
    return faults;
}

void SelectionWindow::check()
{
    for (const NumberedRow &row : rows)
        row.list->setEnabled(row.all == nullptr || !row.all->isChecked());
    const BackupSelection chosen = selection();
    const QStringList faults = markFaults(chosen);
    const bool nothing = NothingWanted(chosen);
    const bool isSlow = CurrentCadence() == Cadence::Ticks;
    okButton->setEnabled(faults.isEmpty() && !nothing);
    if (nothing)
        hintLbl->setText(QStringLiteral("Bitte wählen Sie aus, was gesichert werden soll."));
    else if (!faults.isEmpty())
        hintLbl->setText(faults.join(u'\n'));
    else
        hintLbl->setText(DurationText(EstimatedSeconds(chosen))
            + (chosen.lokSuche ? QStringLiteral(", für jede gefundene Lok etwas länger") : QString())
            + (isSlow
                    ? QStringLiteral("\nMit der schnellen Übertragung (Auswahl der Zentrale) etwa ein Fünftel davon.")
                    : QString()));
}

void SelectionWindow::answer(bool ok)
{
    isAccepted = ok;
    isAnswered = true;
    hide();
}

void SelectionWindow::leave()
{
    answer(false);
}

bool LayLocoList(const QString &list, bool maySave)
{
    if (openWindow != nullptr) {
        openWindow->layLocoList(list);
        return true;
    }
    if (!maySave)
        return false;
    BackupSelection selection = ReadSelection();
    selection.numbered.at(LokDatenList) = {true, false, list};
    selection.lokSuche = false;
    WriteSelection(selection);
    return true;
}

bool AskForBackupSelection(BackupSelection &selection)
{
    SelectionWindow window;
    const WaitingWindow waiting(&window);
    openWindow = &window;
    window.open(selection);
    const bool answered = PumpUntil([&window] { return window.answered(); });
    openWindow = nullptr;
    if (!answered || !window.accepted())
        return false;
    selection = window.selection();
    return true;
}

} // namespace hr::ui
