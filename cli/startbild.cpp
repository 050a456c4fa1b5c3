#include "cli/careful.h"
#include "cli/picture_files.h"
#include "cli/results.h"
#include "handheld/symbol_storage.h"

namespace hr::cli
{

namespace
{

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    if (verb != u"lesen" && verb != u"schreiben")
        return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
    const QString fileName = call.arguments.value(1);
    if (verb == u"schreiben")
        return WritePictureFrom(call, fileName, {RecordKind::StartImage, 0}, EmptyStartPicture());
    SpiImage image{};
    return ReadPictureInto(call, fileName, [&] { return ReadStartPicture(image); });
}

} // namespace

Command StartImageCommand()
{
    return {QStringLiteral("startbild"), {QStringLiteral("lesen|schreiben"), QStringLiteral("DATEI")},
        QStringLiteral("das Startbild in eine Bilddatei (.bmp, .png) oder aus ihr in den Handregler"),
        CarefulOptions(Keeps::Nothing), Run,
        QStringLiteral("Größe: 80 x 26 Punkte. Beim Schreiben wird vorher gefragt.")};
}

} // namespace hr::cli
