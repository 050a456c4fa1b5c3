// What was heard on the bus: a bounded list of messages, and the file that keeps them.
//
// File (.lntrace, UTF-8, a line a message, ended by LF or CR LF):
//   # LocoNet-Mitschnitt, begonnen 2026-11-24T14:03:07
//   0.012345 > ED 1F 08 66 33 ... 4A ; liest Flash 0x0000C0, 64 Bytes
//   0.031003 < B4 6D 7F 59 ; Quittung: erledigt
// Seconds since the beginning with six decimals; ">" = of this program, "<" = of others; the bytes with their checksum; behind
// ";" words for the reader, with "FALSCHE PRÜFSUMME, " in front where it is wrong. Lines with "#" and empty ones say nothing.
#pragma once

#include "link/message_layer.h"

#include <QDateTime>
#include <QFile>
#include <QStringList>

#include <deque>
#include <vector>

namespace hr::handheld
{

struct TraceRow {
    qint64 us = 0; // since the beginning of the trace
    bool own = false;
    QByteArray bytes; // with the checksum
    [[nodiscard]] std::span<const quint8> message() const
    {
        return {reinterpret_cast<const quint8 *>(bytes.constData()), static_cast<size_t>(bytes.size())};
    }
    [[nodiscard]] bool sound() const { return ChecksumRight(message()); }
    bool operator==(const TraceRow &) const = default;
};

/// "0.012345", "ED 1F 08", and the whole line of a file, without its end.
QString TraceTime(const TraceRow &row);
QString TraceBytes(const TraceRow &row);
QString TraceLine(const TraceRow &row);
QString TraceHeading(const QDateTime &begun);

/// What a trace file says. With a fault (German, with its line) it is not to be used.
struct TraceFile {
    std::vector<TraceRow> rows;
    QString fault;
};
TraceFile ParseTrace(const QByteArray &file);

/// Writes a whole trace file; false when it can't be written.
[[nodiscard]] bool WriteTrace(const QString &fileName, const std::vector<TraceRow> &rows);

/// Listens to the link as long as it lives. Rows are numbered from 0 on; the oldest ones are forgotten.
class BusTrace
{
public:
    static constexpr size_t MostRows = 100'000;

    explicit BusTrace(size_t mostRows = MostRows);
    ~BusTrace();
    BusTrace(const BusTrace &) = delete;
    BusTrace &operator=(const BusTrace &) = delete;

    [[nodiscard]] qint64 first() const { return forgotten; }
    [[nodiscard]] qint64 end() const { return forgotten + static_cast<qint64>(rows.size()); }
    [[nodiscard]] const TraceRow &row(qint64 number) const
    {
        return rows.at(static_cast<size_t>(number - forgotten));
    }

    /// Called with each new row. It must not wait.
    std::function<void(const TraceRow &)> onRow;

    /// Writes these rows into a file, and every further message too. False when it can't be written.
    [[nodiscard]] bool keepIn(const QString &fileName, const std::vector<TraceRow> &soFar = {});
    /// False once something could not be written.
    [[nodiscard]] bool fileSound() const { return soundFile; }

    /// When the trace began.
    [[nodiscard]] const QDateTime &begun() const { return begin; }

private:
    void take(const Traffic &traffic);

    const size_t most;
    MessageLayer::TapId tap;
    QDateTime begin;
    qint64 beginUs;
    std::deque<TraceRow> rows;
    qint64 forgotten = 0;
    QFile file;
    bool soundFile = true;
};

} // namespace hr::handheld
