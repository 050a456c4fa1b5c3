#include "roster/loco_json.h"

#include "platform/text.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace hr::roster
{

namespace
{

constexpr int HighestByte = 255;

const auto AddressKey = QStringLiteral("adresse");
const auto NameKey = QStringLiteral("name");
const auto SymbolKey = QStringLiteral("symbol");
const auto MultiUniKey = QStringLiteral("multiuni");
const auto FunctionsKey = QStringLiteral("funktionen");
const auto NumberKey = QStringLiteral("nr");
const auto MomentaryKey = QStringLiteral("tast");
const auto EmptyKey = QStringLiteral("leer");

QJsonObject ObjectOf(const RosterLoco &loco)
{
    const LocoRecord &record = loco.record;
    if (IsEmptyName(record.name))
        return {{AddressKey, loco.address}, {EmptyKey, true}};
    QJsonArray functions;
    for (size_t f = 0; f < FunctionCount; ++f) {
        functions += QJsonObject{{NumberKey, static_cast<int>(f)}, {SymbolKey, record.symbols.at(f)},
            {MomentaryKey, record.modes.at(f) == 1}};
    }
    return {{AddressKey, loco.address}, {NameKey, WithoutTrailingBlanks(record.name)}, {SymbolKey, record.locoSymbol},
        {MultiUniKey, record.multiUni == 1}, {FunctionsKey, functions}};
}

/// Reads one object of the list and notes what is wrong in it.
class ObjectReader
{
public:
    ObjectReader(QJsonObject value, QString placeText, std::vector<FileFault> &faultList)
        : object(std::move(value)), place(std::move(placeText)), faults(faultList)
    {
    }

    [[nodiscard]] bool has(const QString &key) const { return object.contains(key); }
    [[nodiscard]] QJsonValue value(const QString &key) const { return object.value(key); }

    void fault(const QString &key, const QString &reason)
    {
        faults.push_back({0, {}, place + QStringLiteral(", \"") + key + QStringLiteral("\": ") + reason});
    }

    std::optional<int> number(const QString &key, int low, int high)
    {
        const QJsonValue found = value(key);
        const double asNumber = found.toDouble(low - 1);
        const int whole = asNumber >= low && asNumber <= high ? static_cast<int>(asNumber) : low - 1;
        if (whole >= low && whole == asNumber)
            return whole;
        fault(key, QStringLiteral("hier muss eine Zahl von %1 bis %2 stehen").arg(low).arg(high));
        return {};
    }

    std::optional<bool> flag(const QString &key)
    {
        if (value(key).isBool())
            return value(key).toBool();
        fault(key, QStringLiteral("hier muss true oder false stehen"));
        return {};
    }

private:
    QJsonObject object;
    QString place;
    std::vector<FileFault> &faults;
};

std::optional<QString> NameIn(ObjectReader &reader)
{
    const QString name = WithoutTrailingBlanks(reader.value(NameKey).toString());
    if (name.isEmpty() || name.size() > NameLength)
        reader.fault(NameKey, QStringLiteral("hier muss ein Text mit 1 bis %1 Zeichen stehen").arg(NameLength));
    return name;
}

void TakeFunction(ListedLoco &loco, ObjectReader &reader)
{
    const std::optional<int> number = reader.number(NumberKey, 0, FunctionCount - 1);
    if (!number)
        return;
    const auto f = static_cast<size_t>(*number);
    if (reader.has(SymbolKey) && f > 0)
        loco.symbols.at(f) = reader.number(SymbolKey, 0, HighestByte);
    if (reader.has(MomentaryKey))
        loco.modes.at(f) = reader.flag(MomentaryKey).value_or(false) ? 1 : 0;
}

ListedLoco LocoIn(ObjectReader &reader, const QString &place, std::vector<FileFault> &faults)
{
    ListedLoco loco;
    loco.address = reader.number(AddressKey, FirstLoco, LastLoco).value_or(0);
    if (reader.has(NameKey))
        loco.name = NameIn(reader);
    if (reader.has(SymbolKey))
        loco.symbol = reader.number(SymbolKey, 0, HighestByte);
    if (reader.has(MultiUniKey))
        loco.multiUni = reader.flag(MultiUniKey).value_or(false) ? 1 : 0;
    if (reader.has(FunctionsKey) && !reader.value(FunctionsKey).isArray())
        reader.fault(FunctionsKey, QStringLiteral("hier muss eine Liste stehen"));
    const QJsonArray functions = reader.value(FunctionsKey).toArray();
    for (const QJsonValue function : functions) {
        ObjectReader inner(function.toObject(), place + QStringLiteral(", funktionen"), faults);
        TakeFunction(loco, inner);
    }
    return loco;
}

} // namespace

QJsonArray JsonOf(const std::vector<RosterLoco> &locos)
{
    QJsonArray array;
    for (const RosterLoco &loco : locos)
        array += ObjectOf(loco);
    return array;
}

LocoList ReadLocoJson(const QByteArray &file)
{
    LocoList list;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line = static_cast<int>(file.left(error.offset).count('\n')) + 1;
        list.faults.push_back({line, {}, QStringLiteral("das ist kein gültiges JSON: ") + error.errorString()});
        return list;
    }
    if (!document.isArray()) {
        list.faults.push_back({0, {}, QStringLiteral("das JSON enthält keine Liste von Loks")});
        return list;
    }
    const QJsonArray array = document.array();
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QString place = QStringLiteral("Lok Nr. %1 der Liste").arg(i + 1);
        ObjectReader reader(array.at(i).toObject(), place, list.faults);
        if (!reader.value(EmptyKey).toBool())
            list.locos.push_back(LocoIn(reader, place, list.faults));
    }
    if (list.locos.empty() && list.faults.empty())
        list.faults.push_back({0, {}, QStringLiteral("die Datei enthält keine Loks")});
    CheckAddressesOnce(list);
    return list;
}

} // namespace hr::roster
