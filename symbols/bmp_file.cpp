#include "symbols/bmp_file.h"

#include "link/message_layer.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/world.h"
#include "symbols/symbol_geometry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace
{

constexpr int OffsetDataOffset = 10;
constexpr int OffsetWidth = 18;
constexpr int OffsetHeight = 22;
constexpr int OffsetHeightTopByte = 25;
constexpr int OffsetBitDepth = 28;
constexpr int OffsetCompression = 30;
constexpr int OffsetDataSize = 34;
constexpr int NewDataOffset = 62; // file header, info header, palette of two colours
constexpr int ByteMask = 0xFF;

struct BmpLayout {
    int dataOffset;
    int rowBytes;
    int padding; // bytes after each row
};

void ShowError(const QString &text)
{
    TheFrontend().showBox({text, QStringLiteral("Fehler!"), BoxIcon::Critical});
}

/// A byte of the file; bytes past its end count as zero.
int ByteAt(const QByteArray &file, int offset)
{
    return offset < file.size() ? static_cast<quint8>(file.at(offset)) : 0;
}

QString SizeError(int expected, int found)
{
    return QStringLiteral("Fehler Bildbreite nicht richtig:") + NumberText(expected) + QStringLiteral(" <>")
        + NumberText(found);
}

/// What is wrong with the header; empty when the file fits. The order of the checks is the order of the messages.
QString HeaderError(const QByteArray &file)
{
    if (const int depth = ByteAt(file, OffsetBitDepth); depth != 1)
        return QStringLiteral("Farbtiefe des BMP Files muss 1 sein! Hier:") + NumberText(depth);
    if (ByteAt(file, OffsetCompression) != 0)
        return QStringLiteral("Das BMP-File darf nicht komprimiert sein!");
    const int width = ByteAt(file, OffsetWidth);
    if (width != SymbolWidth && !(SymbolWidth == 6 && width == 8))
        return SizeError(SymbolWidth, width);
    const int height = ByteAt(file, OffsetHeight);
    const bool topDown = ByteAt(file, OffsetHeightTopByte) > 0x7F;
    if (topDown) {
        return SizeError(SymbolHeight, height)
            + QStringLiteral("\rDie Datei ist von oben nach unten gespeichert; das wird nicht unterstützt.");
    }
    return height != SymbolHeight ? SizeError(SymbolHeight, height) : QString();
}

BmpLayout LayoutOf(const QByteArray &file)
{
    const int rowBytes = RowBytesOf(ByteAt(file, OffsetWidth));
    const int dataSize = ByteAt(file, OffsetDataSize) + 256 * ByteAt(file, OffsetDataSize + 1);
    // The stored row length may be no whole number; whole bytes of the difference are skipped.
    const int surplus = dataSize - rowBytes * SymbolHeight;
    return {ByteAt(file, OffsetDataOffset), rowBytes, surplus > 0 ? surplus / SymbolHeight : 0};
}

/// End of the last row's pixel bytes.
int EndOfPixels(const BmpLayout &layout)
{
    return layout.dataOffset + SymbolHeight * layout.rowBytes + (SymbolHeight - 1) * layout.padding;
}

std::optional<QByteArray> ReadWhole(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

void PutLittleEndian(QByteArray &bytes, int offset, int value)
{
    for (int i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(value >> (8 * i) & ByteMask);
}

/// An all white picture of the present geometry.
QByteArray NewTemplate()
{
    const int stride = (SymbolWidth + 31) / 32 * 4;
    const int dataSize = stride * SymbolHeight;
    QByteArray file(NewDataOffset, '\0');
    file.append(QByteArray(dataSize, '\xFF'));
    file[0] = 'B';
    file[1] = 'M';
    PutLittleEndian(file, 2, NewDataOffset + dataSize);
    PutLittleEndian(file, OffsetDataOffset, NewDataOffset);
    PutLittleEndian(file, 14, 40); // size of the info header
    PutLittleEndian(file, OffsetWidth, SymbolWidth);
    PutLittleEndian(file, OffsetHeight, SymbolHeight);
    file[26] = 1; // planes
    file[OffsetBitDepth] = 1;
    PutLittleEndian(file, OffsetDataSize, dataSize);
    PutLittleEndian(file, 58, 0xFFFFFF); // second palette colour: white
    return file;
}

/// Overwrites the pixel rows; the padding repeats the last byte of each row.
void PutPixels(QByteArray &file, const BmpLayout &layout)
{
    auto index = static_cast<size_t>(FirstPixelIndex());
    int position = layout.dataOffset;
    const qsizetype end = position + SymbolHeight * (layout.rowBytes + layout.padding);
    if (file.size() < end)
        file.resize(end, '\xFF');
    for (int row = 0; row < SymbolHeight; ++row) {
        for (int i = 0; i < layout.rowBytes; ++i)
            file[position++] = static_cast<char>(255 - SpiBuf.at(index++));
        for (int i = 0; i < layout.padding; ++i, ++position)
            file[position] = file.at(position - 1);
    }
}

void GetPixels(const QByteArray &file, const BmpLayout &layout)
{
    auto index = static_cast<size_t>(FirstPixelIndex());
    int position = layout.dataOffset;
    for (int row = 0; row < SymbolHeight; ++row, position += layout.padding) {
        for (int i = 0; i < layout.rowBytes; ++i)
            SpiBuf.at(index++) = 255 - ByteAt(file, position++);
    }
}

bool SaveFile(const QString &path, const QByteArray &content)
{
    if (ReplaceFile(path, content))
        return true;
    ShowError(QStringLiteral("Die Datei \"%1\" kann nicht geschrieben werden!").arg(path));
    return false;
}

} // namespace

QString TemplatePath(int width)
{
    return KonfPath(width == LokSymbolWidth ? QStringLiteral("\\konf\\temp_loksym.bmp")
                                            : QStringLiteral("\\konf\\temp_lokfkt.bmp"));
}

void LoadBmpToSpibuf(const QString &fileName, int &result)
{
    result = 1;
    const std::optional<QByteArray> file = ReadWhole(fileName);
    if (!file) {
        ShowError(QStringLiteral("Die Datei \"%1\" kann nicht gelesen werden!").arg(fileName));
        return;
    }
    if (const QString error = HeaderError(*file); !error.isEmpty()) {
        ShowError(error);
        return;
    }
    const BmpLayout layout = LayoutOf(*file);
    if (EndOfPixels(layout) > file->size()) {
        ShowError(QStringLiteral("Die BMP-Datei ist unvollständig: %1 Bytes statt %2!")
                      .arg(file->size())
                      .arg(EndOfPixels(layout)));
        return;
    }
    GetPixels(*file, layout);
    result = 0;
}

void SaveSpibufToBmp(const QString &fileName, int &result)
{
    result = 1;
    if (SymbolWidth != LokSymbolWidth && SymbolWidth != HalfSymbolWidth)
        return;
    const QString templatePath = TemplatePath(SymbolWidth);
    QByteArray file = ReadWhole(templatePath).value_or(NewTemplate());
    if (const QString error = HeaderError(file); !error.isEmpty()) {
        ShowError(error);
        return;
    }
    PutPixels(file, LayoutOf(file));
    if (!ReplaceFile(templatePath, file)) {
        ReportUnwritable(QDir::toNativeSeparators(QStringLiteral("konf/") + QFileInfo(templatePath).fileName()));
        if (fileName.isEmpty())
            return;
    }
    const bool isTemplate = QFileInfo(fileName) == QFileInfo(templatePath);
    if (fileName.isEmpty() || isTemplate || SaveFile(fileName, file))
        result = 0;
}
