#include "handheld/options.h"

#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "platform/run_control.h"
#include "platform/world.h"

namespace
{

constexpr int SettingsSize = 128;
constexpr int SwitchOffTimeOffset = 5;
constexpr int LastSlice = 120;
constexpr double SettleSeconds = 0.5;

} // namespace

int ReadSettingsBlock()
{
    const int status = ReadFlash(SettingsAddress, SettingsSize);
    MoveToWritePosition(SettingsSize - 1);
    return status;
}

int WriteSettingsBlock()
{
    // The page is not loaded first: its bytes from 128 on are programmed from what buffer 1 holds.
    const PageSequence sequence;
    LayBufferWrite(0);
    const int sliceStatus = WriteSlices(LastSlice, WritePosition + SettingsSize);
    int programStatus = 0;
    write_buf1_to_flash(SettingsAddress, programStatus);
    return sliceStatus | programStatus;
}

void ClearSwitchOffTime()
{
    TheFrontend().showProgress(QStringLiteral("Abschaltzeit ändern"));
    ReadSettingsBlock();
    if (!WaitsMustEnd()) {
        SpiBuf.at(WritePosition + SwitchOffTimeOffset) = 0;
        WriteSettingsBlock();
    }
    WaitSeconds(SettleSeconds);
    TheFrontend().hideProgress();
}
