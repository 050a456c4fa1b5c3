#include "cli/picture_files.h"

#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "symbols/bmp_file.h"
#include "symbols/image_file.h"

#include <algorithm>

namespace hr::cli
{

namespace
{

Exit ExitOfTransfer(const Outcome &outcome, const QString &what)
{
    if (outcome.ok())
        return Exit::Done;
    if (outcome.how() == End::ProgramEnds)
        Tell(QStringLiteral("Angehalten: Es wurde nichts geschrieben."));
    else
        Tell(what);
    return outcome.how() == End::ProgramEnds ? Exit::Stopped : Exit::Incomplete;
}

bool HasImageName(const QString &fileName)
{
    if (IsImageName(fileName))
        return true;
    UsageFault(QStringLiteral("%1: Der Name muss auf .bmp oder .png enden.").arg(fileName));
    return false;
}

} // namespace

Exit ReadPictureInto(const Call &call, const QString &fileName, const std::function<Result<Picture>()> &read)
{
    if (!HasImageName(fileName) || !ReadsOnly(call))
        return Exit::Usage;
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const Result<Picture> picture = read();
    if (!picture.ok())
        return ExitOfTransfer(picture.outcome,
            QStringLiteral("Das Bild wurde nicht sicher gelesen; die Datei wird nicht geschrieben."));
    const PictureGeometry geometry = picture.value.geometry;
    if (!WriteFileArgument(fileName, ImageFileOf(fileName, RowsOf(picture.value), geometry)))
        return Exit::Usage;
    if (call.options.json)
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("datei"), fileName},
            {QStringLiteral("breite"), geometry.width}, {QStringLiteral("hoehe"), geometry.height}}));
    else
        PrintLine(QStringLiteral("Gelesen nach %1 (%2 x %3 Punkte)")
                      .arg(fileName)
                      .arg(geometry.width)
                      .arg(geometry.height));
    return Exit::Done;
}

Exit WritePictureFrom(const Call &call, const QString &fileName, const RecordId &id, Picture blank)
{
    if (!HasImageName(fileName))
        return Exit::Usage;
    const auto file = ReadFileArgument(fileName);
    if (!file)
        return Exit::Usage;
    const ReadImage image = ReadImageFile(fileName, *file, blank.geometry);
    if (!image.fault.isEmpty())
        return FileFaults(fileName, image.fault);
    std::copy(image.rows.begin(), image.rows.end(), blank.bytes.begin() + SizeBytes);
    CarefulJob job = JobOf(call);
    job.about = *file;
    job.steps = {{StepKind::Write, id, blank, {}}};
    job.lead = RecordName(id) + QStringLiteral(" wird überschrieben.\r");
    return RunCarefully(call, job);
}

} // namespace hr::cli
