#include "cli/picture_files.h"

#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "symbols/bmp_file.h"
#include "symbols/image_file.h"

#include <algorithm>

namespace
{

Exit ExitOfTransfer(const Outcome &outcome, const QString &what)
{
    if (outcome.ok())
        return Exit::Done;
    if (outcome.how() == End::ProgramEnds)
        Tell(QStringLiteral("Abgebrochen: Es wurde nichts geschrieben."));
    else
        Tell(what);
    return outcome.how() == End::ProgramEnds ? Exit::Stopped : Exit::Incomplete;
}

Exit ReadInto(const Call &call, const QString &fileName, const std::function<Result<Picture>()> &read)
{
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

} // namespace

Exit MovePicture(const Call &call, const QString &fileName, bool writes, Picture blank,
    const std::function<Result<Picture>()> &read, const std::function<Outcome(const Picture &)> &write)
{
    if (!IsImageName(fileName))
        return UsageFault(QStringLiteral("%1: Der Name muss auf .bmp oder .png enden.").arg(fileName));
    if (!writes)
        return ReadInto(call, fileName, read);
    const auto file = ReadFileArgument(fileName);
    if (!file)
        return Exit::Usage;
    const ReadImage image = ReadImageFile(fileName, *file, blank.geometry);
    if (!image.fault.isEmpty())
        return FileFaults(fileName, image.fault);
    std::copy(image.rows.begin(), image.rows.end(), blank.bytes.begin() + SizeBytes);
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const Exit exit = ExitOfTransfer(
        write(blank), QStringLiteral("Das Bild wurde nicht sicher geschrieben. Bitte auch die Nachbarn prüfen."));
    if (exit == Exit::Done && call.options.json)
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("geschrieben"), fileName}}));
    else if (exit == Exit::Done)
        PrintLine(QStringLiteral("In den Handregler geschrieben: ") + fileName);
    return exit;
}
