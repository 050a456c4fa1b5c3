#include "cli/picture_files.h"
#include "cli/results.h"
#include "handheld/symbol_storage.h"

namespace
{

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    if (verb != u"lesen" && verb != u"schreiben")
        return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
    Picture blank{StartImageGeometry, std::vector<quint8>(static_cast<size_t>(FlashBytesOf(StartImageGeometry)), 0)};
    LaySizeBytes(blank);
    SpiImage image{};
    return MovePicture(
        call, call.arguments.value(1), verb == u"schreiben", blank, [&] { return ReadStartPicture(image); },
        [&](const Picture &picture) { return WriteStartPicture(image, picture, Patience::Job).outcome; });
}

} // namespace

Command StartImageCommand()
{
    return {QStringLiteral("startbild"), {QStringLiteral("lesen|schreiben"), QStringLiteral("DATEI")},
        QStringLiteral("das Startbild in eine Bilddatei (.bmp, .png) oder aus ihr in den Handregler"), {}, Run,
        QStringLiteral("Größe: 80 x 26 Punkte.")};
}
