#include "shown/record.h"

#include <algorithm>

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

void ShowPicture(const Picture &picture)
{
    std::ranges::copy(picture.bytes, SpiBuf.begin() + WritePosition);
}

Outcome ReadLocoRecord(int locoNumber)
{
    const Result<LocoRecord> read = ReadLoco(SpiBuf, locoNumber);
    if (!read.outcome.brokenOff())
        SetCurrentLocoRecord(read.value);
    return read.outcome;
}

Outcome WriteLocoRecord(int locoNumber, const LocoRecord &record)
{
    return WriteLoco(SpiBuf, locoNumber, record, Patience::Agreed);
}

void ResetShownRecord()
{
    SpiBuf.fill(0);
    SetCurrentLocoRecord({LeerName(), {}, {}, 0, 0});
}
