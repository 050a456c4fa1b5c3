#include "handheld/loco_record.h"

#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "link/text_encoding.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <algorithm>

QString LokName = LeerName();
std::array<int, FunctionCount> FktSymbol{};
std::array<int, FunctionCount> FktModus{};
int MultiUni = 0;
int LokSymbol = 0;

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

QString EmptyName(int length)
{
    return QString(length, FillerCharacter);
}

size_t ReadIndex(size_t offset)
{
    return ReadPosition + offset;
}

size_t WriteIndex(size_t offset)
{
    return WritePosition + offset;
}

size_t ModeByte(size_t function)
{
    return OffsetModes + function / BitsPerByte;
}

int ModeMask(size_t function)
{
    return 1 << (function % BitsPerByte);
}

void DecodeFields()
{
    FktSymbol.at(0) = 0; // f0 has no symbol in the record
    for (size_t f = 1; f < FunctionCount; ++f)
        FktSymbol.at(f) = SpiBuf.at(ReadIndex(OffsetFktSymbol + f));
    for (size_t f = 0; f < FunctionCount; ++f)
        FktModus.at(f) = (SpiBuf.at(ReadIndex(ModeByte(f))) & ModeMask(f)) != 0 ? 1 : 0;
    MultiUni = (SpiBuf.at(ReadIndex(OffsetLastMode)) & MultiUniBit) != 0 ? 1 : 0;
    LokSymbol = SpiBuf.at(ReadIndex(OffsetLokSymbol));
}

void EncodeNameField()
{
    if (IsEmptyName(LokName))
        std::fill_n(SpiBuf.begin() + WritePosition, NameLength, EmptyByte);
    else
        EncodeName(LokName, SpiBuf, static_cast<int>(WriteIndex(OffsetName)), NameLength);
}

void EncodeFields()
{
    SpiBuf.at(WriteIndex(OffsetLokSymbol)) = LokSymbol;
    for (size_t offset = OffsetModes; offset <= OffsetLastMode; ++offset)
        SpiBuf.at(WriteIndex(offset)) = 0;
    for (size_t f = 0; f < FunctionCount; ++f)
        SpiBuf.at(WriteIndex(ModeByte(f))) += FktModus.at(f) == 1 ? ModeMask(f) : 0;
    SpiBuf.at(WriteIndex(OffsetLastMode)) += MultiUni * MultiUniBit;
    for (size_t f = 1; f < FunctionCount; ++f)
        SpiBuf.at(WriteIndex(OffsetFktSymbol + f)) = FktSymbol.at(f);
}

/// Page load, buffer write of the laid record, page program. lastSlice 0 sends only the first 19 bytes.
int ProgramRecord(int locoNumber, int lastSlice)
{
    const PageSequence sequence;
    const int address = LocoRecordAddress(locoNumber);
    int loadStatus = 0;
    move_spibuf_to_buf1(address, loadStatus);
    LayBufferWrite(PageOffset(address));
    const int sliceStatus = WriteSlices(lastSlice, ExecuteLength);
    int programStatus = 0;
    write_buf1_to_flash(address, programStatus);
    return loadStatus | sliceStatus | programStatus;
}

} // namespace

LocoRecord CurrentLocoRecord()
{
    return {LokName, FktSymbol, FktModus, MultiUni, LokSymbol};
}

void SetCurrentLocoRecord(const LocoRecord &record)
{
    LokName = record.name;
    FktSymbol = record.symbols;
    FktModus = record.modes;
    MultiUni = record.multiUni;
    LokSymbol = record.locoSymbol;
}

bool IsEmptyName(const QString &name)
{
    return name.startsWith(FillerCharacter);
}

int ReadLocoRecord(int locoNumber)
{
    int status = 0;
    read_flash_to_spibuf(LocoRecordAddress(locoNumber), LocoRecordSize, status);
    int failed = status | ReadSlices(0, 0);
    if (SpiBuf.at(ReadIndex(OffsetName)) == EmptyByte) {
        LokName = EmptyName(NameLength);
    } else {
        failed |= ReadSlices(SliceSize, LastSlice);
        LokName = DecodeName(SpiBuf, static_cast<int>(ReadIndex(OffsetName)), NameLength);
    }
    DecodeFields();
    return failed;
}

int WriteLocoRecord(int locoNumber)
{
    EncodeNameField();
    EncodeFields();
    return ProgramRecord(locoNumber, LastSlice);
}

int DeleteLocoRecord(int locoNumber)
{
    std::fill_n(SpiBuf.begin() + WritePosition, NameLength, EmptyByte);
    return ProgramRecord(locoNumber, 0);
}

bool LocoRecordIsUsed(int locoNumber, int &status)
{
    read_flash_to_spibuf(LocoRecordAddress(locoNumber), 1, status);
    if (status == 0)
        read_spibuf(0, status);
    return status == 0 && SpiBuf.at(ReadIndex(OffsetName)) != EmptyByte;
}

void ClearAllLocoRecords()
{
    const StoppableJob job;
    for (int n = FirstLoco; n <= LastLoco && !StoppableJob::stopRequested(); ++n) {
        TheFrontend().setProgressText(QStringLiteral("Lösche Lok ") + QString::number(n));
        if (DeleteLocoRecord(n) != 0 || !Comm().isOpen())
            return;
    }
}

QString FitLocoName(const QString &name)
{
    return name.leftJustified(NameLength, u' ', true);
}

void ResetLocoRecord()
{
    SetCurrentLocoRecord({LeerName(), {}, {}, 0, 0});
}
