#include "fuzz/file_readers.h"

#include "handheld/backup/dds_file.h"
#include "jobs/selection.h"
#include "platform/loconet_lines.h"
#include "platform/port_name.h"
#include "program/settings_file.h"

namespace hr::tests
{

namespace
{

QByteArray PackedAgain(const DdsRecord &record)
{
    return PackRecord(record.id, UnpackRecord(record));
}

bool NumberIsPossible(const RecordId &id)
{
    switch (id.kind) {
    case RecordKind::Loco:
        return id.number >= 1 && id.number <= 9999;
    case RecordKind::LocoSymbol:
        return id.number >= 0 && id.number <= 63;
    default:
        return id.number >= 0 && id.number <= 255;
    }
}

const char *BackupFileFault(const QByteArray &bytes)
{
    const DdsContent content = ReadDds(bytes);
    qsizetype next = 0;
    for (const DdsRecord &record : content.records) {
        if (record.position != next || bytes.mid(next, record.bytes.size()) != record.bytes)
            return "records do not follow one another";
        if (!NumberIsPossible(record.id) || PackedAgain(record) != record.bytes)
            return "garbage would be written";
        next += record.bytes.size();
    }
    if (!content.fault)
        return next == bytes.size() ? nullptr : "bytes are left over";
    const bool inPlace = content.fault->position >= next && content.fault->position <= bytes.size();
    return inPlace && !FaultText(*content.fault).isEmpty() ? nullptr : "the fault is named at a wrong place";
}

const char *SelectionFault(const QByteArray &bytes)
{
    const BackupSelection selection = ParseSelection(bytes);
    const QByteArray text = SelectionText(selection);
    if (SelectionText(ParseSelection(text)) != text)
        return "the selection changes";
    bool sound = SearchFault(selection).isEmpty();
    for (const NumberedKind kind : {LokDatenList, LokSymbolList, FktSymbolList, MagSymbolList})
        sound = sound && ListFault(selection, kind).isEmpty();
    return !sound || EstimatedSeconds(selection) >= 0 ? nullptr : "the estimate is wrong";
}

/// What a server in the network may say: only whole messages come out of it, in whatever pieces it comes.
const char *LinesFault(const QByteArray &bytes)
{
    LocoNetLines whole;
    LocoNetLines pieces;
    whole.linesFor(bytes);
    pieces.linesFor(bytes);
    const QByteArray atOnce = whole.messagesIn(bytes);
    QByteArray oneByOne;
    for (const char byte : bytes)
        oneByOne += pieces.messagesIn(QByteArray(1, byte));
    if (atOnce != oneByOne)
        return "the pieces of the text count";
    if (!atOnce.isEmpty() && (atOnce.at(0) & 0x80) == 0)
        return "what begins without an opcode is no message";
    const auto port = NetworkPortOf(QString::fromUtf8(bytes));
    return port && (port->port < 0 || port->port > 65535) ? "there is no such port" : nullptr;
}

} // namespace

const char *ReadAsEveryFile(const QByteArray &bytes)
{
    const int kind = ParseSettings(bytes).interfaceType;
    if (kind < InterfaceNone || kind > InterfaceDirect)
        return "there is no such interface";
    const char *fault = BackupFileFault(bytes);
    if (fault == nullptr)
        fault = SelectionFault(bytes);
    return fault != nullptr ? fault : LinesFault(bytes);
}

} // namespace hr::tests
