#include "ui/common/symbol_pictures.h"

#include "platform/files.h"
#include "symbols/image_file.h"
#include "ui/widgets/grid.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>

namespace hr::ui
{

namespace
{

using Key = std::tuple<SymbolKind, int, int>; // kind, number, catalogue half
std::map<Key, QPixmap> known;
std::optional<QPixmap> hook;
constexpr int ToolTipFactor = 6;

QImage ImageOfRows(const PictureRows &rows, PictureGeometry geometry)
{
    QImage image(geometry.width, geometry.height, QImage::Format_Mono);
    image.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    const auto rowBytes = static_cast<size_t>(RowBytesOf(geometry.width));
    for (int line = 0; line < geometry.height; ++line) { // the bottom row comes first
        const size_t first = static_cast<size_t>(geometry.height - 1 - line) * rowBytes;
        std::copy_n(rows.begin() + static_cast<std::ptrdiff_t>(first), rowBytes, image.scanLine(line));
    }
    return image;
}

QPixmap PictureOfFile(const QString &path)
{
    const GreyImage image = DecodeBmp(ReadWholeFile(path).value_or(QByteArray())).image;
    if (image.pixels.empty())
        return {};
    return QPixmap::fromImage(ImageOfRows(RowsOfGrey(image), {image.width, image.height}));
}

QString HalfWord(SymbolKind kind, int handheldHalf)
{
    if (kind == SymbolKind::Loco)
        return {};
    if (kind == SymbolKind::Function)
        return handheldHalf == HalfOn ? QStringLiteral(", ON") : QStringLiteral(", OFF");
    return handheldHalf == HalfOn ? QStringLiteral(", Grün") : QStringLiteral(", Rot");
}

} // namespace

QString KindWord(SymbolKind kind)
{
    switch (kind) {
    case SymbolKind::Loco:
        return QStringLiteral("Loksymbol");
    case SymbolKind::Function:
        return QStringLiteral("Funktionssymbol");
    case SymbolKind::Accessory:
        return QStringLiteral("Mag.Art. Symbol");
    }
    Q_UNREACHABLE();
}

QImage ImageOf(const Picture &picture)
{
    return ImageOfRows(RowsOf(picture), picture.geometry);
}

QPixmap SymbolPicture(SymbolKind kind, int number, int catalogueHalf)
{
    const Key key{kind, number, catalogueHalf};
    if (const auto found = known.find(key); found != known.end())
        return found->second;
    const QString path = PicturePath(kind, number, catalogueHalf);
    return known[key] = path.isEmpty() ? QPixmap() : PictureOfFile(path);
}

QPixmap SymbolPictureOfHalf(SymbolKind kind, int number, int handheldHalf)
{
    return SymbolPicture(kind, number, CatalogueHalf(kind, handheldHalf));
}

QString SymbolName(SymbolKind kind, int number)
{
    if (number < 0 || number >= CatalogueSize)
        return {};
    static const QRegularExpression numberAndEnding(
        QStringLiteral("^\\d+ *|\\.bmp$"), QRegularExpression::CaseInsensitiveOption);
    return Description(kind, number).trimmed().remove(numberAndEnding);
}

bool SymbolHasWord(SymbolKind kind, int number, const QString &beginning)
{
    const QString words = u' ' + SymbolName(kind, number);
    return !beginning.isEmpty() && words.contains(QString(u' ' + beginning), Qt::CaseInsensitive);
}

QString SymbolWords(SymbolKind kind, int number, int handheldHalf)
{
    QString text = KindWord(kind) + u' ' + QString::number(number);
    if (number < 0 || number >= CatalogueSize)
        return text;
    if (const QString name = SymbolName(kind, number); !name.isEmpty())
        text += QStringLiteral(": ") + name;
    return text + HalfWord(kind, handheldHalf);
}

QString SymbolToolTip(SymbolKind kind, int number, int handheldHalf)
{
    QString words = SymbolWords(kind, number, handheldHalf).toHtmlEscaped();
    const QString path = PicturePath(kind, number, CatalogueHalf(kind, handheldHalf));
    if (path.isEmpty())
        return words;
    const int width = GeometryOf(kind).width * ToolTipFactor;
    return QStringLiteral("%1<br><img src=\"%2\" width=\"%3\">") // a paragraph of its own would leave an empty third
        .arg(words, QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded))
        .arg(width);
}

void ShowSymbol(Grid *grid, int row, int column, SymbolKind kind, int number, int handheldHalf)
{
    grid->setPicture(row, column, SymbolPictureOfHalf(kind, number, handheldHalf));
    grid->setWords(row, column, SymbolToolTip(kind, number, handheldHalf), SymbolWords(kind, number, handheldHalf));
}

QPixmap HookPicture()
{
    if (!hook)
        hook = PictureOfFile(KonfPath(QStringLiteral("\\konf\\Haken.bmp")));
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

} // namespace hr::ui
