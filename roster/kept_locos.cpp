#include "roster/kept_locos.h"

#include "platform/files.h"
#include "roster/loco_files.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace hr::roster
{

namespace
{

/// The name of a handheld is whatever it says of itself.
QString FileOf(const QString &handheld)
{
    constexpr qsizetype digits = 16;
    const QByteArray sum = QCryptographicHash::hash(handheld.toUtf8(), QCryptographicHash::Sha256).toHex();
    return KonfPath(QStringLiteral("\\konf\\Lokliste\\")) + QString::fromLatin1(sum.left(digits))
        + QStringLiteral(".dds");
}

} // namespace

KeptLocos ReadKeptLocos(const QString &handheld)
{
    const QString name = FileOf(handheld);
    const auto file = LoadDds(name);
    const DdsContent content = file ? ReadDds(*file) : DdsContent();
    if (content.records.empty() || content.fault)
        return {};
    return {LocosIn(content), QFileInfo(name).lastModified()};
}

void KeepLocos(const QString &handheld, const std::vector<RosterLoco> &locos)
{
    const QString name = FileOf(handheld);
    MakeFolder(QFileInfo(name).path());
    static_cast<void>(ReplaceFile(name, FileOfLocos(name, locos)));
}

} // namespace hr::roster
