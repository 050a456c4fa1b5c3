#include "handheld/bus_trace.h"

#include "handheld/message_words.h"
#include "platform/files.h"
#include "platform/world.h"

#include <QRegularExpression>

namespace hr::handheld
{

namespace
{
constexpr qint64 UsPerSecond = 1'000'000;

QByteArray TextOf(const QString &heading, const std::vector<TraceRow> &rows)
{
    QByteArray text = heading.toUtf8() + '\n';
    for (const TraceRow &row : rows)
        text += TraceLine(row).toUtf8() + '\n';
    return text;
}
} // namespace

QString TraceTime(const TraceRow &row)
{
    return QStringLiteral("%1.%2").arg(row.us / UsPerSecond).arg(row.us % UsPerSecond, 6, 10, QLatin1Char('0'));
}

QString TraceBytes(const TraceRow &row)
{
    return QString::fromLatin1(row.bytes.toHex(' ')).toUpper();
}

QString TraceLine(const TraceRow &row)
{
    const QString wrong = row.sound() ? QString() : QStringLiteral("FALSCHE PRÜFSUMME, ");
    return TraceTime(row) + (row.own ? QStringLiteral(" > ") : QStringLiteral(" < ")) + TraceBytes(row)
        + QStringLiteral(" ; ") + wrong + MessageWords(row.message());
}

QString TraceHeading(const QDateTime &begun)
{
    return QStringLiteral("# LocoNet-Mitschnitt, begonnen ") + begun.toString(Qt::ISODate);
}

TraceFile ParseTrace(const QByteArray &file)
{
    static const QRegularExpression line(
        QStringLiteral("^(\\d{1,9})\\.(\\d{6}) ([<>])((?: [0-9A-Fa-f]{2}){2,127})\\s*(?:;.*)?$"));
    TraceFile trace;
    int number = 0;
    for (const QByteArray &raw : file.split('\n')) {
        ++number;
        const QString text = QString::fromUtf8(raw.left(2000)).trimmed();
        if (text.isEmpty() || text.startsWith(u'#'))
            continue;
        const auto match = line.match(text);
        if (!match.hasMatch())
            return {{},
                QStringLiteral("Zeile %1: hier muss eine Meldung stehen, zum Beispiel 0.012345 < 83 7C").arg(number)};
        trace.rows.push_back({match.captured(1).toLongLong() * UsPerSecond + match.captured(2).toLongLong(),
            match.captured(3) == u">", QByteArray::fromHex(match.captured(4).toLatin1())});
    }
    return trace;
}

bool WriteTrace(const QString &fileName, const std::vector<TraceRow> &rows)
{
    return ReplaceFile(fileName, TextOf(QStringLiteral("# LocoNet-Mitschnitt"), rows));
}

BusTrace::BusTrace(size_t mostRows) : most(mostRows), begin(TheEvents().now()), beginUs(TheEvents().monotonicUs())
{
    tap = TheMessages().tapTraffic([this](const Traffic &traffic) { take(traffic); });
}

BusTrace::~BusTrace()
{
    TheMessages().endTap(tap);
}

bool BusTrace::keepIn(const QString &fileName, const std::vector<TraceRow> &soFar)
{
    file.close();
    file.setFileName(fileName);
    const QByteArray text = TextOf(TraceHeading(begin), soFar);
    soundFile =
        file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size() && file.flush();
    return soundFile;
}

void BusTrace::take(const Traffic &traffic)
{
    rows.push_back({TheEvents().monotonicUs() - beginUs, traffic.own,
        QByteArray(
            reinterpret_cast<const char *>(traffic.bytes.data()), static_cast<qsizetype>(traffic.bytes.size()))});
    if (rows.size() > most) {
        rows.pop_front();
        ++forgotten;
    }
    if (file.isOpen()) {
        const QByteArray line = TraceLine(rows.back()).toUtf8() + '\n';
        soundFile = soundFile && file.write(line) == line.size() && file.flush();
    }
    if (onRow)
        onRow(rows.back());
}

} // namespace hr::handheld
