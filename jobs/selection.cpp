#include "jobs/selection.h"

#include "jobs/record_reader.h"

#include "handheld/backup/number_list.h"
#include "link/cadence.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"

#include <QFile>
#include <QStringList>

#include <cmath>
#include <optional>

namespace hr::jobs
{

namespace
{

std::optional<BackupSelection> unsaved; // where the file cannot be written: holds until the program ends

constexpr int Halves = 2;

/// The record kind of a numbered kind (of its first half).
constexpr std::array<RecordKind, NumberedKindCount> RecordKinds{
    RecordKind::Loco, RecordKind::LocoSymbol, RecordKind::FunctionOn, RecordKind::AccessoryGreen};

/// What the search asks of an address that holds nothing.
double EmptyLocoMessages()
{
    return CostOfReading({StepKind::Search, {}, {}, {}}, true);
}

double MessagesPerNumber(NumberedKind kind)
{
    const KindRow &row = RowOfChoice(kind);
    return row.halfName.isEmpty() ? row.rowMessages : row.rowMessages * Halves;
}

const NumberChoice &ChoiceOf(const BackupSelection &selection, NumberedKind kind)
{
    return selection.numbered.at(kind);
}

int CountNumbers(const QString &list)
{
    NumberList numbers(list);
    int count = 0;
    while (numbers.next() >= 0)
        ++count;
    return count;
}

QString SettingsPath()
{
    return KonfPath(QStringLiteral("\\konf\\Sicherung.txt"));
}

/// Where the value of a key lives: exactly one of the pointers is set.
struct Field {
    QString key;
    NumberChoice *choice = nullptr;
    bool *flag = nullptr;
    int *address = nullptr;
};

QString KeyOf(RecordKind kind)
{
    return RowOf(kind).selectionKey + u':';
}

Field ListField(BackupSelection &s, NumberedKind kind)
{
    return {RowOfChoice(kind).selectionKey + u':', &s.numbered.at(kind)};
}

Field AllField(BackupSelection &s, NumberedKind kind)
{
    return {RowOfChoice(kind).allKey + u':', nullptr, &s.numbered.at(kind).all};
}

/// All keys in the order of the file.
std::array<Field, 13> Fields(BackupSelection &s)
{
    return {ListField(s, LokDatenList), ListField(s, LokSymbolList), ListField(s, FktSymbolList),
        ListField(s, MagSymbolList), Field{KeyOf(RecordKind::RouteTable), nullptr, &s.fsDaten},
        Field{KeyOf(RecordKind::AssignmentTable), nullptr, &s.magSymZuord},
        Field{KeyOf(RecordKind::PlaceTable), nullptr, &s.magListe},
        Field{QStringLiteral("LokSuche:"), nullptr, &s.lokSuche},
        Field{QStringLiteral("LokSucheAdrStart:"), nullptr, nullptr, &s.lokSucheStart},
        Field{QStringLiteral("LokSucheAdrStop:"), nullptr, nullptr, &s.lokSucheStop}, AllField(s, LokSymbolList),
        AllField(s, FktSymbolList), AllField(s, MagSymbolList)};
}

void SetField(const Field &field, const QString &value)
{
    const bool flag = value.startsWith(u'1');
    if (field.choice != nullptr) {
        field.choice->wanted = flag;
        field.choice->list = value.mid(2);
    } else if (field.flag != nullptr) {
        *field.flag = flag;
    } else if (NumberListFault(value, FirstLoco, LastLoco).isEmpty()) {
        *field.address = NumberList(value).next();
    }
}

QString FieldValue(const Field &field)
{
    const auto flagText = [](bool flag) { return flag ? QStringLiteral("1") : QStringLiteral("0"); };
    if (field.choice != nullptr)
        return flagText(field.choice->wanted) + u' '
            + field.choice->list.simplified(); // one line, whatever was typed
    return field.flag != nullptr ? flagText(*field.flag) : QString::number(*field.address);
}

} // namespace

const KindRow &RowOfChoice(NumberedKind kind)
{
    return RowOf(RecordKinds.at(kind));
}

QString WantedNumbers(const BackupSelection &selection, NumberedKind kind)
{
    const NumberChoice &choice = ChoiceOf(selection, kind);
    if (!choice.wanted)
        return {};
    const KindRow &row = RowOfChoice(kind);
    return choice.all ? QStringLiteral("%1-%2").arg(row.lowest).arg(row.highest) : choice.list;
}

QString ListFault(const BackupSelection &selection, NumberedKind kind)
{
    if (!ChoiceOf(selection, kind).wanted)
        return {};
    const KindRow &row = RowOfChoice(kind);
    return NumberListFault(WantedNumbers(selection, kind), row.lowest, row.highest);
}

QString SearchFault(const BackupSelection &selection)
{
    if (!selection.lokSuche)
        return {};
    for (const int address : {selection.lokSucheStart, selection.lokSucheStop}) {
        if (address < FirstLoco || address > LastLoco)
            return QStringLiteral("die Adressen müssen zwischen %1 und %2 liegen").arg(FirstLoco).arg(LastLoco);
    }
    if (selection.lokSucheStart > selection.lokSucheStop)
        return QStringLiteral("die kleinere Adresse gehört nach vorn");
    return {};
}

bool NothingWanted(const BackupSelection &selection)
{
    bool wanted = selection.fsDaten || selection.magSymZuord || selection.magListe || selection.lokSuche;
    for (const NumberChoice &choice : selection.numbered)
        wanted = wanted || choice.wanted;
    return !wanted;
}

double EstimatedSeconds(const BackupSelection &selection)
{
    double messages = 0;
    for (int kind = 0; kind < NumberedKindCount; ++kind) {
        const auto numbered = static_cast<NumberedKind>(kind);
        messages += CountNumbers(WantedNumbers(selection, numbered)) * MessagesPerNumber(numbered);
    }
    if (selection.lokSuche)
        messages += (selection.lokSucheStop - selection.lokSucheStart + 1) * EmptyLocoMessages();
    messages += selection.fsDaten ? RowOf(RecordKind::RouteTable).readMessages : 0;
    messages += selection.magSymZuord ? RowOf(RecordKind::AssignmentTable).readMessages : 0;
    messages += selection.magListe ? RowOf(RecordKind::PlaceTable).readMessages : 0;
    return messages * SecondsPerMessage();
}

QString DurationText(double seconds)
{
    constexpr int perHour = 60;
    const int minutes = static_cast<int>(std::ceil(seconds / 60));
    if (minutes <= 1)
        return QStringLiteral("Dauer: höchstens 1 Minute");
    if (minutes < perHour)
        return QStringLiteral("Dauer: ca. %1 Minuten").arg(minutes);
    return QStringLiteral("Dauer: ca. %1 Std. %2 Min.").arg(minutes / perHour).arg(minutes % perHour);
}

BackupSelection EverythingSelected()
{
    BackupSelection all{.numbered = {}, .fsDaten = true, .magSymZuord = true, .magListe = true, .lokSuche = true};
    for (const NumberedKind kind : {LokSymbolList, FktSymbolList, MagSymbolList})
        all.numbered.at(kind) = {true, true, {}};
    return all;
}

BackupSelection ParseSelection(const QByteArray &content)
{
    BackupSelection selection;
    const QStringList lines = ScreenLines(QString::fromLatin1(content)).split(u'\n');
    const auto fields = Fields(selection);
    for (const QString &line : lines) {
        for (const Field &field : fields) {
            if (line.startsWith(field.key))
                SetField(field, line.mid(field.key.size()));
        }
    }
    return selection;
}

QByteArray SelectionText(const BackupSelection &selection)
{
    QString text;
    BackupSelection copy = selection;
    for (const Field &field : Fields(copy))
        text += field.key + FieldValue(field) + u"\r\n";
    return text.toLatin1();
}

BackupSelection ReadSelection()
{
    if (unsaved)
        return *unsaved;
    return ParseSelection(ReadWholeFile(SettingsPath()).value_or(QByteArray()));
}

BackupSelection ProposedSelection()
{
    return unsaved || QFile::exists(SettingsPath()) ? ReadSelection() : EverythingSelected();
}

void WriteSelection(const BackupSelection &selection)
{
    unsaved.reset();
    if (ReplaceFile(SettingsPath(), SelectionText(selection)))
        return;
    unsaved = selection;
    ReportUnwritable(QStringLiteral("konf\\Sicherung.txt"));
}

void ResetSelection()
{
    unsaved.reset();
}

} // namespace hr::jobs
