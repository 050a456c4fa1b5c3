#include "shown/record.h"

#include "handheld/known_locos.h"

SpiImage SpiBuf{};
QString LokName = LeerName();
std::array<int, FunctionCount> FktSymbol{};
std::array<int, FunctionCount> FktModus{};
int MultiUni = 0;
int LokSymbol = 0;

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

Outcome ReadLocoRecord(int locoNumber)
{
    const Result<LocoRecord> read = ReadLoco(SpiBuf, locoNumber);
    if (read.ok())
        NoteRecord(locoNumber, read.value);
    if (!read.outcome.brokenOff())
        SetCurrentLocoRecord(read.value);
    return read.outcome;
}

Outcome WriteLocoRecord(int locoNumber, const LocoRecord &record)
{
    const Outcome written = WriteLoco(SpiBuf, locoNumber, record, Patience::Agreed).outcome;
    if (written.ok())
        NoteRecord(locoNumber, record);
    return written;
}

void ResetShownRecord()
{
    SpiBuf.fill(0);
    SetCurrentLocoRecord({LeerName(), {}, {}, 0, 0});
}
