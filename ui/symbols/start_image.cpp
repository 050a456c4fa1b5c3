#include "ui/symbols/start_image.h"

#include "handheld/symbol_storage.h"
#include "shown/record.h"
#include "ui/common/command.h"
#include "ui/common/deeds.h"
#include "ui/common/progress.h"
#include "ui/symbols/pixel_editor.h"

namespace hr::ui
{

namespace
{

BoxText Question()
{
    return {QStringLiteral("Soll das Startbild in den Handregler geschrieben werden?"),
        QStringLiteral("Startbild ändern?"), BoxIcon::None};
}

Result<Picture> Read()
{
    const Progress progress(QStringLiteral("Lese Startbild"));
    Result<Picture> read = ReadStartPicture(SpiBuf);
    if (!read.outcome.brokenOff())
        WaitSeconds(StandardDelaySeconds);
    return read;
}

} // namespace

void EditStartImage()
{
    const Command command;
    if (!command.connected())
        return;
    const Result<Picture> read = Read();
    if (read.outcome.brokenOff())
        return;
    Picture picture = EditPicture(read.value);
    if (!command.confirmed(Question(), false) || !command.mayWrite())
        return;
    if (!read.ok() && !command.mayWriteDoubtful(QStringLiteral("das Startbild")))
        return;
    const Progress progress(QStringLiteral("Schreibe Startbild"));
    LaySizeBytes(picture);
    const Outcome written = WriteStartPicture(SpiBuf, picture, Patience::Agreed).outcome;
    if (written.ok())
        NoteDeed(QStringLiteral("Startbild geschrieben"));
    if (!written.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

} // namespace hr::ui
