#include "shown/record.h"

#include "handheld/known_locos.h"

#include <algorithm>

namespace hr::shown
{

SpiImage SpiBuf{};
ShownLoco CurrentLoco;

QString LokName()
{
    return CurrentLoco.nothingToWrite ? ShownName(CurrentLoco.record) : CurrentLoco.record.name;
}

void ShowPicture(const Picture &picture)
{
    std::ranges::copy(picture.bytes, SpiBuf.begin() + WritePosition);
}

Outcome ReadLocoRecord(int locoNumber)
{
    const Result<LocoRecord> read = ReadLoco(SpiBuf, locoNumber);
    if (read.ok())
        NoteRecord(locoNumber, read.value);
    if (!read.outcome.brokenOff())
        CurrentLoco = {read.value, IsEmptyName(read.value.name)};
    return read.outcome;
}

Outcome WriteLocoRecord(int locoNumber, const LocoRecord &record)
{
    Outcome written = WriteLoco(SpiBuf, locoNumber, record, Patience::Agreed).outcome;
    if (written.ok())
        NoteRecord(locoNumber, record);
    return written;
}

void ResetShownRecord()
{
    SpiBuf.fill(0);
    CurrentLoco = {};
}

} // namespace hr::shown
