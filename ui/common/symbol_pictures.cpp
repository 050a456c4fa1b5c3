#include "ui/common/symbol_pictures.h"

#include "platform/files.h"

#include <QImage>

#include <map>
#include <optional>
#include <tuple>

namespace
{

using Key = std::tuple<SymbolKind, int, int>; // kind, number, catalogue half
std::map<Key, QPixmap> known;
std::optional<QPixmap> hook;

} // namespace

QPixmap FreshPictureOfFile(const QString &path)
{
    return QPixmap::fromImage(QImage::fromData(ReadWholeFile(path).value_or(QByteArray()), "BMP"));
}

QPixmap SymbolPicture(SymbolKind kind, int number, int catalogueHalf)
{
    const Key key{kind, number, catalogueHalf};
    if (const auto found = known.find(key); found != known.end())
        return found->second;
    const QString path = PicturePath(kind, number, catalogueHalf);
    return known[key] = path.isEmpty() ? QPixmap() : FreshPictureOfFile(path);
}

QPixmap SymbolPictureOfHalf(SymbolKind kind, int number, int handheldHalf)
{
    return SymbolPicture(kind, number, CatalogueHalf(kind, handheldHalf));
}

QPixmap HookPicture()
{
    if (!hook)
        hook = FreshPictureOfFile(KonfPath(QStringLiteral("\\konf\\Haken.bmp")));
    return *hook;
}

void DropSymbolPictures(SymbolKind kind, int number)
{
    std::erase_if(known, [&](const auto &entry) {
        return std::get<0>(entry.first) == kind && (number < 0 || std::get<1>(entry.first) == number);
    });
}

void ResetSymbolPictures()
{
    known.clear();
    hook.reset();
}
