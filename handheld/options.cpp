#include "handheld/options.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr size_t SwitchOffTimeOffset = 5;
constexpr int LastSlice = 120;

} // namespace

Result<SettingsBlock> ReadSettingsBlock(SpiImage &image)
{
    Result<SettingsBlock> read;
    read.outcome = ReadFlash(image, SettingsAddress, SettingsSize);
    MoveToWritePosition(image, SettingsSize - 1);
    std::copy_n(image.begin() + WritePosition, SettingsSize, read.value.begin());
    return read;
}

PageResult WriteSettingsBlock(SpiImage &image, const SettingsBlock &settings, const Patience &patience)
{
    // The page is not loaded first: its bytes from 128 on are programmed from what buffer 1 holds.
    const PagePart part{0, {settings.begin(), settings.end()}, LastSlice, WritePosition + SettingsSize};
    return ProgramPage(image, {SettingsAddress, false, {part}}, patience);
}

Outcome ClearSwitchOffTime(SpiImage &image, const std::function<bool()> &mayWrite)
{
    Result<SettingsBlock> settings = ReadSettingsBlock(image);
    if (settings.outcome.brokenOff() || (!settings.ok() && !mayWrite()))
        return settings.outcome;
    settings.value.at(SwitchOffTimeOffset) = 0;
    settings.outcome.keep(WriteSettingsBlock(image, settings.value, Patience::Agreed).outcome);
    return settings.outcome;
}

} // namespace hr::handheld
