#include "handheld/loco_record.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr size_t OffsetName = 0;
constexpr size_t OffsetModes = 28;
constexpr size_t OffsetLastMode = 31;
constexpr size_t OffsetFktSymbol = 32; // of function f at + f
constexpr size_t OffsetLokSymbol = 61;
constexpr int MultiUniBit = 0x80;
constexpr int BitsPerByte = 8;

constexpr int LastSlice = 60;
constexpr int ExecuteLength = WritePosition + LocoRecordSize;

size_t ModeByte(size_t function)
{
    return OffsetModes + function / BitsPerByte;
}

int ModeMask(size_t function)
{
    return 1 << (function % BitsPerByte);
}

LocoBytes BytesAt(const SpiImage &image, int position)
{
    LocoBytes bytes{};
    std::copy_n(image.begin() + position, bytes.size(), bytes.begin());
    return bytes;
}

/// Page load, buffer write, page program of a record's place.
PageResult ProgramRecord(
    SpiImage &image, int locoNumber, std::vector<quint8> data, int lastSlice, const Patience &patience)
{
    const int address = LocoRecordAddress(locoNumber);
    const PagePart part{PageOffset(address), std::move(data), lastSlice, ExecuteLength};
    return ProgramPage(image, {address, true, {part}}, patience);
}

} // namespace

LocoRecord DecodeLoco(const LocoBytes &bytes)
{
    LocoRecord record;
    record.name = bytes.at(OffsetName) == EmptyByte ? EmptyName() : DecodeName(bytes, OffsetName, NameLength);
    for (size_t f = 1; f < FunctionCount; ++f) // f0 has no symbol in the record
        record.symbols.at(f) = bytes.at(OffsetFktSymbol + f);
    for (size_t f = 0; f < FunctionCount; ++f)
        record.modes.at(f) = (bytes.at(ModeByte(f)) & ModeMask(f)) != 0 ? 1 : 0;
    record.multiUni = (bytes.at(OffsetLastMode) & MultiUniBit) != 0 ? 1 : 0;
    record.locoSymbol = bytes.at(OffsetLokSymbol);
    return record;
}

LocoBytes EncodeLoco(const LocoRecord &record, const LocoBytes &beneath)
{
    LocoBytes bytes = beneath;
    if (IsEmptyName(record.name))
        std::fill_n(bytes.begin() + OffsetName, NameLength, EmptyByte);
    else
        EncodeName(record.name, bytes, OffsetName, NameLength);
    for (size_t offset = OffsetModes; offset <= OffsetLastMode; ++offset)
        bytes.at(offset) = 0;
    for (size_t f = 0; f < FunctionCount; ++f)
        bytes.at(ModeByte(f)) += record.modes.at(f) == 1 ? ModeMask(f) : 0;
    bytes.at(OffsetLastMode) += record.multiUni * MultiUniBit;
    for (size_t f = 1; f < FunctionCount; ++f)
        bytes.at(OffsetFktSymbol + f) = record.symbols.at(f);
    bytes.at(OffsetLokSymbol) = record.locoSymbol;
    return bytes;
}

bool IsEmptyName(const QString &name)
{
    return name.startsWith(FillerCharacter);
}

QString EmptyName(int length)
{
    return QString(length, FillerCharacter);
}

QString ShownName(const LocoRecord &record)
{
    return IsEmptyName(record.name) ? QStringLiteral("-leer-") : WithoutTrailingBlanks(record.name);
}

QString FitLocoName(const QString &name)
{
    return name.leftJustified(NameLength, u' ', true);
}

Result<LocoRecord> ReadLoco(SpiImage &image, int locoNumber, const Patience &patience)
{
    Outcome outcome = RunStep(patience, [&](const Patience &manner) {
        Outcome read = read_flash_to_spibuf(LocoRecordAddress(locoNumber), LocoRecordSize, manner);
        if (!EndsStep(read, manner))
            read.keep(ReadSlices(image, 0, 0, manner));
        if (!EndsStep(read, manner) && image.at(ReadPosition) != EmptyByte)
            read.keep(ReadSlices(image, SliceSize, LastSlice, manner));
        return read;
    });
    return {DecodeLoco(BytesAt(image, ReadPosition)), outcome};
}

PageResult WriteLoco(SpiImage &image, int locoNumber, const LocoRecord &record, const Patience &patience)
{
    const LocoBytes bytes = EncodeLoco(record, BytesAt(image, WritePosition));
    return ProgramRecord(image, locoNumber, {bytes.begin(), bytes.end()}, LastSlice, patience);
}

PagePart LocoPart(int locoNumber, const LocoRecord &record, const LocoBytes &beneath)
{
    const LocoBytes bytes = EncodeLoco(record, beneath);
    return {PageOffset(LocoRecordAddress(locoNumber)), {bytes.begin(), bytes.end()}, LastSlice, ExecuteLength};
}

PageResult DeleteLoco(SpiImage &image, int locoNumber, const Patience &patience)
{
    return ProgramRecord(image, locoNumber, std::vector<quint8>(NameLength, EmptyByte), 0, patience);
}

Result<bool> LocoIsUsed(int locoNumber, const Patience &patience)
{
    SpiImage image{};
    Outcome outcome = RunStep(patience, [&](const Patience &manner) {
        Outcome read = read_flash_to_spibuf(LocoRecordAddress(locoNumber), 1, manner);
        return read.ok() ? read_spibuf(image, 0, manner) : read;
    });
    return {outcome.ok() && image.at(ReadPosition) != EmptyByte, outcome};
}

} // namespace hr::handheld
