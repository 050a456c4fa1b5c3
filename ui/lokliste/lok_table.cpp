#include "ui/lokliste/lok_table.h"

#include "platform/text.h"
#include "ui/common/symbol_pictures.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace hr::ui
{

namespace
{

const auto MomentaryMark = QStringLiteral("T");

int SymbolOf(const LocoRecord &record, int function)
{
    return record.symbols.at(static_cast<size_t>(function));
}

bool IsMomentary(const LocoRecord &record, int function)
{
    return record.modes.at(static_cast<size_t>(function)) == 1;
}

QString NameOf(const LocoRecord &record)
{
    return WithoutTrailingBlanks(record.name);
}

/// 0..255; nothing for all else.
std::optional<int> ByteIn(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 0 && number <= 255 ? std::optional(number) : std::nullopt;
}

using Edit = std::function<void(Lok &)>;

std::optional<Edit> EditOfFunction(int function, const QString &text)
{
    const bool momentary = text.endsWith(MomentaryMark, Qt::CaseInsensitive);
    const QString number = (momentary ? text.chopped(1) : text).trimmed();
    const auto symbol = number.isEmpty() ? std::optional(0) : ByteIn(number);
    if (!symbol || (function == 0 && *symbol != 0))
        return {};
    return [=](Lok &lok) {
        lok.record.symbols.at(static_cast<size_t>(function)) = *symbol;
        lok.record.modes.at(static_cast<size_t>(function)) = momentary ? 1 : 0;
    };
}

std::optional<Edit> EditOfMultiUni(const QString &text)
{
    const QString word = text.toLower();
    if (word != u"" && word != u"0" && word != u"1" && word != u"ja" && word != u"nein")
        return {};
    return [on = word == u"1" || word == u"ja"](Lok &lok) { lok.record.multiUni = on ? 1 : 0; };
}

/// An address that is none is kept as 0, so that it is seen and named before writing.
std::optional<Edit> EditOfAddress(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!text.isEmpty() && (!isNumber || number < 0))
        return {};
    return [number](Lok &lok) { lok.address = number <= LastLoco ? number : 0; };
}

/// What a text does to a row; nothing when the column does not take it.
std::optional<Edit> EditOf(int column, const QString &given)
{
    const QString text = given.trimmed();
    if (const int function = LokTable::FunctionOf(column); function >= 0)
        return EditOfFunction(function, text);
    switch (column) {
    case LokTable::AddressColumn:
        return EditOfAddress(text);
    case LokTable::NameColumn:
        return [text](Lok &lok) { lok.record.name = TypedName(text); };
    case LokTable::SymbolColumn:
        if (const auto symbol = ByteIn(text))
            return [symbol](Lok &lok) { lok.record.locoSymbol = *symbol; };
        return {};
    case LokTable::MultiUniColumn:
        return EditOfMultiUni(text);
    default:
        return {};
    }
}

QPixmap CellPicture(const Lok &lok, int column)
{
    if (column == LokTable::SymbolColumn)
        return PictureOfLoco(lok.record);
    const int function = LokTable::FunctionOf(column);
    return function > 0 ? PictureOfFunction(lok.record, function) : QPixmap();
}

/// The number stands where there is no picture of it.
QString CellText(const Lok &lok, int column, const QString &state)
{
    const int function = LokTable::FunctionOf(column);
    const bool pictured = !CellPicture(lok, column).isNull();
    if (function >= 0) {
        const int symbol = SymbolOf(lok.record, function);
        const QString number = pictured || symbol == 0 ? QString() : QString::number(symbol);
        return number + (IsMomentary(lok.record, function) ? MomentaryMark : QString());
    }
    switch (column) {
    case LokTable::AddressColumn:
        return lok.address == 0 ? QStringLiteral("?") : QString::number(lok.address);
    case LokTable::NameColumn:
        return NameOf(lok.record);
    case LokTable::SymbolColumn:
        return pictured ? QString() : QString::number(lok.record.locoSymbol);
    case LokTable::MultiUniColumn:
        return lok.record.multiUni == 1 ? QStringLiteral("ja") : QString();
    default:
        return state;
    }
}

/// For those who point at a cell, or hear it.
QString CellWords(const Lok &lok, int column)
{
    if (column == LokTable::SymbolColumn) {
        const QString name = SymbolName(SymbolKind::Loco, lok.record.locoSymbol);
        return QStringLiteral("Loksymbol %1%2")
            .arg(lok.record.locoSymbol)
            .arg(name.isEmpty() ? QString() : QString(QStringLiteral(": ") + name));
    }
    const int function = LokTable::FunctionOf(column);
    if (function < 0)
        return {};
    const int symbol = SymbolOf(lok.record, function);
    const QString name = SymbolName(SymbolKind::Function, symbol);
    const QString picture = symbol == 0
        ? QStringLiteral("ohne Symbol")
        : QStringLiteral("Symbol %1%2").arg(symbol).arg(name.isEmpty() ? QString() : QString(u' ' + name));
    return QStringLiteral("f%1: %2, %3")
        .arg(function)
        .arg(function == 0 ? QStringLiteral("Licht") : picture)
        .arg(IsMomentary(lok.record, function) ? QStringLiteral("Tastfunktion") : QStringLiteral("Schaltfunktion"));
}

QVariant SortValue(const Lokliste &list, int row, int column)
{
    const Lok &lok = list.at(row);
    if (const int function = LokTable::FunctionOf(column); function >= 0)
        return SymbolOf(lok.record, function) * 2 + (IsMomentary(lok.record, function) ? 1 : 0);
    switch (column) {
    case LokTable::AddressColumn:
        return lok.address;
    case LokTable::NameColumn:
        return UpperLatin1(NameOf(lok.record)).normalized(QString::NormalizationForm_D); // Ä beside A
    case LokTable::SymbolColumn:
        return lok.record.locoSymbol;
    case LokTable::MultiUniColumn:
        return lok.record.multiUni;
    default:
        return static_cast<int>(list.state(row));
    }
}

} // namespace

LokTable::LokTable(Lokliste &lokliste, QObject *parent) : QAbstractTableModel(parent), list(lokliste)
{
    list.onRows = [this](const std::vector<int> &rows) {
        for (const int row : rows)
            Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
        Q_EMIT contentChanged();
    };
    list.onReset = [this] {
        beginResetModel();
        endResetModel();
        Q_EMIT contentChanged();
    };
}

int LokTable::FunctionOf(int column)
{
    const int function = column - FirstFunctionColumn;
    return function >= 0 && function < FunctionCount ? function : -1;
}

void LokTable::setTicked(const std::vector<int> &rows, bool tick)
{
    for (const int row : rows) {
        if (tick)
            ticked.insert(list.at(row).id);
        else
            ticked.erase(list.at(row).id);
        Q_EMIT dataChanged(index(row, 0), index(row, 0), {Qt::CheckStateRole});
    }
    Q_EMIT contentChanged();
}

bool LokTable::setText(const std::vector<int> &rows, int column, const QString &text)
{
    const auto edit = EditOf(column, text);
    if (edit)
        list.change(rows, *edit);
    return edit.has_value();
}

QStringList LokTable::paste(std::vector<int> rows, int column, const QStringList &lines)
{
    const Lokliste::OneStep one(list);
    while (rows.size() < static_cast<size_t>(lines.size()))
        rows.push_back(list.addNew());
    QStringList refused;
    std::map<int, std::vector<Edit>> edits; // by id
    for (qsizetype line = 0; line < lines.size(); ++line) {
        const QStringList cells = lines.at(line).split(u'\t');
        const int id = list.at(rows.at(static_cast<size_t>(line))).id;
        for (int cell = 0; cell < cells.size() && column + cell < StateColumn; ++cell) {
            if (const auto edit = EditOf(column + cell, cells.at(cell)))
                edits[id].push_back(*edit);
            else
                refused +=
                    QStringLiteral("\"%1\" in Spalte %2")
                        .arg(cells.at(cell), headerData(column + cell, Qt::Horizontal, Qt::DisplayRole).toString());
        }
    }
    list.change(rows, [&edits](Lok &lok) {
        for (const Edit &edit : edits[lok.id])
            edit(lok);
    });
    return refused;
}

void LokTable::refresh()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
    Q_EMIT contentChanged();
}

QString LokTable::editText(int row, int column) const
{
    const Lok &lok = list.at(row);
    if (const int function = FunctionOf(column); function >= 0) {
        const int symbol = SymbolOf(lok.record, function);
        return (symbol == 0 ? QString() : QString::number(symbol))
            + (IsMomentary(lok.record, function) ? MomentaryMark : QString());
    }
    if (column == SymbolColumn)
        return QString::number(lok.record.locoSymbol);
    return lok.address == 0 && column == AddressColumn ? QString()
                                                       : CellText(lok, column, StateText(list.state(row)));
}

int LokTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : list.size();
}

int LokTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LokTable::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    const int column = index.column();
    const Lok &lok = list.at(row);
    switch (role) {
    case Qt::DisplayRole:
        return CellText(lok, column, column == StateColumn ? StateText(list.state(row)) : QString());
    case Qt::EditRole:
        return editText(row, column);
    case Qt::ToolTipRole:
        if (const QStringList faults = list.faults(row); !faults.isEmpty() && FunctionOf(column) < 0)
            return faults.join(u'\n');
        return CellWords(lok, column);
    case Qt::AccessibleTextRole:
        if (const QString words = CellWords(lok, column); !words.isEmpty())
            return words;
        return CellText(lok, column, StateText(list.state(row)));
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            column == NameColumn || column == StateColumn ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignCenter);
    case Qt::CheckStateRole:
        return column == AddressColumn ? QVariant(isTicked(row) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::ForegroundRole:
        if (list.state(row) == LokState::Invalid && FunctionOf(column) < 0)
            return QColor(Qt::red).lighter(QGuiApplication::palette().window().color().lightness() < 128 ? 150 : 100);
        return {};
    case PictureRole:
        return CellPicture(lok, column);
    case SortRole:
        return SortValue(list, row, column);
    default:
        return {};
    }
}

bool LokTable::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role == Qt::CheckStateRole && index.column() == AddressColumn) {
        setTicked({index.row()}, value.toInt() == Qt::Checked);
        return true;
    }
    return role == Qt::EditRole && setText({index.row()}, index.column(), value.toString());
}

Qt::ItemFlags LokTable::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() != StateColumn)
        flags |= Qt::ItemIsEditable;
    if (index.column() == AddressColumn)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant LokTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    if (const int function = FunctionOf(section); function >= 0)
        return QString(u'f' + QString::number(function));
    static const QStringList captions{QStringLiteral("Adr."), QStringLiteral("Name"), QStringLiteral("Symbol"),
        QStringLiteral("ident."), QStringLiteral("Zustand")};
    static const QStringList words{QStringLiteral("Adresse, angekreuzt wird sie gesendet"), QStringLiteral("Name"),
        QStringLiteral("Loksymbol"), QStringLiteral("ein Symbol für alle Funktionen"),
        QStringLiteral("wie die Lok hier zu der im Handregler steht")};
    return (role == Qt::DisplayRole ? captions : words).at(std::min(section, static_cast<int>(FirstFunctionColumn)));
}

bool HasText(const Lok &lok, const QString &wanted)
{
    return QString::number(lok.address).contains(wanted) || lok.record.name.contains(wanted, Qt::CaseInsensitive)
        || SymbolHasWord(SymbolKind::Loco, lok.record.locoSymbol, wanted);
}

QPixmap PictureOfLoco(const LocoRecord &record)
{
    return record.locoSymbol < LokSymbolCount ? SymbolPictureOfHalf(SymbolKind::Loco, record.locoSymbol, HalfOn)
                                              : QPixmap();
}

QPixmap PictureOfFunction(const LocoRecord &record, int function)
{
    return SymbolPictureOfHalf(SymbolKind::Function, SymbolOf(record, function), HalfOn);
}

} // namespace hr::ui
