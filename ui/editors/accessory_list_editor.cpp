#include "ui/editors/accessory_list_editor.h"

#include "handheld/table_entries.h"
#include "handheld/text_encoding.h"
#include "platform/text.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/tables.h"
#include "ui/common/progress.h"
#include "ui/editors/cell_input.h"
#include "ui/widgets/grid.h"

#include <algorithm>

namespace hr::ui
{

namespace
{

enum Column { NumberColumn, AddressColumn, DesignationColumn, RedColumn, GreenColumn };

AccessoryPlace PlaceOfRow(int row)
{
    return PlaceAt(MagListeDaten, static_cast<size_t>(row));
}

void LayPlaceOfRow(int row, const AccessoryPlace &place)
{
    LayPlace(MagListeDaten, static_cast<size_t>(row), place);
}

BlockEditorLook Look()
{
    return {QStringLiteral("MagListeWin"), QStringLiteral("Mag.Art. Liste ändern"), QStringLiteral("MagListeTab"),
        {QStringLiteral("Platz"), QStringLiteral("Mag.Adr."), QStringLiteral("Bez."), QString(), QString()},
        {60, 100, 80, 65, 65}, PlaceCount, QStringLiteral("LeseMagListeBut"), QStringLiteral("Lese Mag.Listendaten"),
        QStringLiteral("SchreibeMagListeBut"), QStringLiteral("Schreibe Mag.Listendaten")};
}

/// The number at the start of a text, rounded: decimals may follow a point or a comma.
int RoundedVal(const QString &text)
{
    const int whole = Val(text);
    qsizetype at = 0;
    while (at < text.size() && text.at(at) == u' ')
        ++at;
    while (at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9')
        ++at;
    const bool decimals = text.mid(at, 1) == QStringLiteral(".") || text.mid(at, 1) == QStringLiteral(",");
    const QChar tenths = decimals && at + 1 < text.size() ? text.at(at + 1) : QChar(u'0');
    return whole <= LastAccessoryAddress && tenths >= u'5' && tenths <= u'9' ? whole + 1 : whole;
}

} // namespace

AccessoryListEditor::AccessoryListEditor() : BlockEditor(Look(), MagListeLoaded) { }

Outcome AccessoryListEditor::readTable()
{
    const Progress progress(QStringLiteral("Lese Mag.Listendaten"));
    Outcome outcome = ReadMagListe();
    if (outcome.brokenOff())
        return outcome;
    WaitSeconds(ShortPauseSeconds);
    for (int row = 0; row < PlaceCount; ++row) {
        LetEventsRun();
        showPlace(row);
    }
    return outcome;
}

std::vector<quint8> AccessoryListEditor::entries() const
{
    return {MagListeDaten.begin(), MagListeDaten.end()};
}

std::function<Outcome()> AccessoryListEditor::writeOfTable() const
{
    return [list = MagListeDaten] {
        const Progress progress(QStringLiteral("Schreibe Mag.Listendaten"));
        return WriteMagListe(list);
    };
}

void AccessoryListEditor::showPlace(int row)
{
    const AccessoryPlace place = PlaceOfRow(row);
    grid->setText(row, AddressColumn, QString::number(place.address));
    grid->setText(row, DesignationColumn, place.designationText());
    showSymbol(row);
}

bool AccessoryListEditor::takesInput(int column) const
{
    return column == AddressColumn || column == DesignationColumn;
}

void AccessoryListEditor::actOn(int row, int column)
{
    if (column == RedColumn || column == GreenColumn)
        pickSymbol(row);
    if (!takesInput(column))
        return;
    const auto text = input->ask(row, column);
    if (!text)
        return;
    grid->setText(row, column, UpperLatin1(*text));
    if (column == DesignationColumn)
        takeDesignation(row, *text);
    else if (!takeAddress(row, RoundedVal(*text)))
        grid->setText(row, AddressColumn, QStringLiteral("ERR!"));
}

/// False when the address is none; the place keeps its own then.
bool AccessoryListEditor::takeAddress(int row, int address)
{
    if (address < 1 || address > LastAccessoryAddress)
        return false;
    AccessoryPlace place = PlaceOfRow(row);
    place.address = address;
    LayPlaceOfRow(row, place);
    return true;
}

void AccessoryListEditor::setEntries(const std::vector<quint8> &entries)
{
    std::ranges::copy(entries, MagListeDaten.begin());
}

int AccessoryListEditor::symbolOf(int row) const
{
    return PlaceOfRow(row).symbol;
}

void AccessoryListEditor::setSymbol(int row, int symbol)
{
    AccessoryPlace place = PlaceOfRow(row);
    place.symbol = static_cast<quint8>(symbol);
    LayPlaceOfRow(row, place);
}

QString AccessoryListEditor::lay(int row, int column, const QString &text)
{
    if (column == RedColumn || column == GreenColumn)
        return laySymbol(row, text);
    if (column == AddressColumn) {
        if (!takeAddress(row, RoundedVal(text)))
            return QStringLiteral("erlaubt sind Zahlen von 1 bis %1").arg(LastAccessoryAddress);
        grid->setText(row, AddressColumn, QString::number(RoundedVal(text)));
        return {};
    }
    if (text.size() > DesignationLength)
        return QStringLiteral("erlaubt sind höchstens %1 Zeichen").arg(DesignationLength);
    if (const QString unknown = UnknownCharacters(UpperLatin1(text)); !unknown.isEmpty())
        return QStringLiteral("diese Zeichen hat der Handregler nicht: ") + unknown;
    takeDesignation(row, text);
    grid->setText(row, DesignationColumn, AsStored(text, DesignationLength));
    return {};
}

void AccessoryListEditor::takeDesignation(int row, const QString &text)
{
    AccessoryPlace place = PlaceOfRow(row);
    place.setDesignation(text);
    LayPlaceOfRow(row, place);
}

void AccessoryListEditor::pickSymbol(int row)
{
    const int chosen = pickAccessorySymbol(symbolOf(row));
    if (chosen == NothingChosen)
        return;
    setSymbol(row, chosen);
    showSymbol(row);
}

} // namespace hr::ui
