#include "handheld/backup/record_names.h"

#include "handheld/backup/number_list.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <QStringList>

namespace
{

struct KindTexts {
    QString plural;
    QString progress; // followed by the number, if the kind has numbers
};

const KindTexts &TextsOf(int kind)
{
    static const std::array<KindTexts, LastKind + 1> texts{KindTexts{},
        KindTexts{QStringLiteral("Lokdatensätze"), QStringLiteral("Lok-Daten: ")},
        KindTexts{QStringLiteral("Loksymbole"), QStringLiteral("Lok.Symbol: ")},
        KindTexts{QStringLiteral("Funktionssymbole ON"), QStringLiteral("Fkt.Symbol: ")},
        KindTexts{QStringLiteral("Funktionssymbole OFF"), QStringLiteral("Fkt.Symbol: ")},
        KindTexts{QStringLiteral("Fahrstraßen"), QStringLiteral("Fahrstraßen")},
        KindTexts{QStringLiteral("Mag.Art. Symbole Grün"), QStringLiteral("Mag.Symbol: ")},
        KindTexts{QStringLiteral("Mag.Art. Symbole Rot"), QStringLiteral("Mag.Symbol: ")},
        KindTexts{QStringLiteral("Mag.Art. Symbolzuordnung"), QStringLiteral("Mag.Art.Symbolzuordnung")},
        KindTexts{QStringLiteral("Mag.Art. Liste"), QStringLiteral("Mag.Art.Listendaten")}};
    return texts.at(static_cast<size_t>(kind));
}

bool HasNumbers(int kind)
{
    return TextsOf(kind).progress.endsWith(u' ');
}

} // namespace

JobEnd WhyBrokenOff()
{
    if (BoxesAreSilent())
        return JobEnd::ProgramEnds;
    return Comm().isOpen() ? JobEnd::Stopped : JobEnd::PortLost;
}

bool JobGoesOn()
{
    LetEventsRun();
    return !StoppableJob::stopRequested() && Comm().isOpen();
}

QString RecordsText(const std::vector<RecordId> &records)
{
    QStringList lines;
    for (int kind = KindLoco; kind <= LastKind; ++kind) {
        std::vector<int> numbers;
        for (const RecordId &id : records) {
            if (id.kind == kind)
                numbers.push_back(id.number);
        }
        const QString list =
            HasNumbers(kind) ? QStringLiteral(": ") + ShortList(numbers, QStringLiteral("\r     ")) : QString();
        if (!numbers.empty())
            lines += KindName(kind) + list;
    }
    return lines.isEmpty() ? QStringLiteral("keine") : lines.join(u'\r');
}

QString KindName(int kind)
{
    return TextsOf(kind).plural;
}

QString RecordCount(size_t count)
{
    return count == 1 ? QStringLiteral("1 Datensatz") : QStringLiteral("%1 Datensätze").arg(count);
}

void ShowRecordProgress(const RecordId &id)
{
    const QString number = HasNumbers(id.kind) ? QString::number(id.number) : QString();
    TheFrontend().setProgressText(TextsOf(id.kind).progress + number);
}
