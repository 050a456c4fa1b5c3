#include "platform/files.h"
#include "symbols/image_file.h"
#include "symbols/pixel_cells.h"
#include "symbols/symbol_catalogue.h"
#include "tests/support/virtual_world.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <png.h>

namespace hr::tests
{

namespace
{

struct BmpParts {
    int width = 48;
    int height = 16;
    int depth = 1;
    int compression = 0;
    int dataOffset = 62;
    int stride = 8;
    int heightTopByte = 0;
};

QByteArray Bmp(const BmpParts &parts)
{
    QByteArray file(parts.dataOffset + parts.stride * parts.height, '\0');
    const int dataSize = parts.stride * parts.height;
    const std::pair<int, int> bytes[] = {{10, parts.dataOffset}, {18, parts.width}, {22, parts.height},
        {25, parts.heightTopByte}, {28, parts.depth}, {30, parts.compression}, {34, dataSize & 0xFF},
        {35, dataSize >> 8}};
    for (const auto &[offset, value] : bytes)
        file[offset] = static_cast<char>(value);
    for (int i = 0; i < dataSize; ++i)
        file[parts.dataOffset + i] = static_cast<char>(i);
    return file;
}

} // namespace

class Symbols : public VirtualWorld
{
protected:
    std::optional<PictureRows> load(const QByteArray &content, PictureGeometry geometry = LokSymbolGeometry)
    {
        const QString path = folder.path() + QStringLiteral("/test.bmp");
        EXPECT_TRUE(ReplaceFile(path, content));
        return LoadBmp(path, geometry);
    }

    static PictureRows someRows(PictureGeometry geometry)
    {
        PictureRows rows;
        for (int i = 0; i < RowBytesOf(geometry.width) * geometry.height; ++i)
            rows.push_back(i * 37 % 256);
        return rows;
    }

    static QByteArray contentOf(const QString &path) { return ReadWholeFile(path).value_or(QByteArray()); }
};

TEST_F(Symbols, FilesAreLoadedRowByRowWithoutTheirPadding)
{
    struct Row {
        PictureGeometry geometry;
        int stride;
        int offset;
        int rowBytes;
    };
    for (const Row &row :
        {Row{LokSymbolGeometry, 8, 62, 6}, Row{LokSymbolGeometry, 6, 146, 6}, Row{HalfSymbolGeometry, 4, 62, 2}}) {
        const auto [width, height] = row.geometry;
        const auto rows = load(Bmp({width, height, 1, 0, row.offset, row.stride}), row.geometry);
        ASSERT_TRUE(rows);
        ASSERT_EQ(rows->size(), static_cast<size_t>(height * row.rowBytes));
        for (int y = 0; y < height; ++y) {
            for (int i = 0; i < row.rowBytes; ++i)
                EXPECT_EQ(rows->at(static_cast<size_t>(y * row.rowBytes + i)), 255 - ((y * row.stride + i) & 0xFF));
        }
    }
    EXPECT_TRUE(load(Bmp({8, 8, 1, 0, 62, 4}), {6, 8}));
}

TEST_F(Symbols, WrongFilesAreRefusedWithTheReasonAndChangeNothing)
{
    struct Row {
        QByteArray file;
        const char *message;
    };
    const QByteArray good = Bmp({});
    const Row rows[] = {
        {Bmp({.depth = 24}), "Farbtiefe des BMP Files muss 1 sein! Hier: 24"},
        {Bmp({.depth = 4, .compression = 1}), "Farbtiefe des BMP Files muss 1 sein! Hier: 4"},
        {QByteArray(), "Farbtiefe des BMP Files muss 1 sein! Hier: 0"},
        {good.left(29), "Die BMP-Datei ist unvollständig: 29 Bytes statt 158!"},
        {Bmp({.compression = 1}), "Das BMP-File darf nicht komprimiert sein!"},
        {Bmp({.width = 32, .height = 15}), "Fehler Bildbreite nicht richtig: 48 <> 32"},
        {Bmp({.height = 15}), "Fehler Bildbreite nicht richtig: 16 <> 15"},
        {Bmp({.height = 0}), "Fehler Bildbreite nicht richtig: 16 <> 0"},
        {Bmp({.height = 240, .heightTopByte = 255}),
            "Fehler Bildbreite nicht richtig: 16 <> 240\r"
            "Die Datei ist von oben nach unten gespeichert; das wird nicht unterstützt."},
        {good.left(100), "Die BMP-Datei ist unvollständig: 100 Bytes statt 188!"},
    };
    for (const Row &row : rows) {
        user.expect(QString::fromUtf8(row.message), QStringLiteral("Fehler!"));
        EXPECT_FALSE(load(row.file));
    }
}

TEST_F(Symbols, DamagedHeadersNeverCrash)
{
    user.acceptAnyBox();
    const QByteArray good = Bmp({});
    for (int offset = 0; offset < 62; ++offset) {
        for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
            QByteArray damaged = good;
            damaged[offset] = value;
            static_cast<void>(load(damaged));
        }
    }
    for (qsizetype length = 0; length < good.size(); length += 3)
        EXPECT_EQ(load(good.left(length)).has_value(), length >= 188);
}

TEST_F(Symbols, SavedFilesAreCopiesOfTheTemplateAndLoadAgain)
{
    const QString target = folder.path() + QStringLiteral("/out.bmp");
    for (const PictureGeometry geometry : {LokSymbolGeometry, HalfSymbolGeometry}) {
        const PictureRows rows = someRows(geometry);
        EXPECT_TRUE(SaveBmp(rows, geometry, target)); // the template is made on first use
        EXPECT_EQ(contentOf(target), contentOf(TemplatePath(geometry.width)));
        EXPECT_TRUE(contentOf(target).startsWith("BM"));
        EXPECT_EQ(LoadBmp(target, geometry), rows);
        EXPECT_TRUE(SaveBmp(rows, geometry, TemplatePath(geometry.width))); // onto the template itself
    }
    const QByteArray file = contentOf(TemplatePath(14));
    EXPECT_EQ(file.at(62 + 2), file.at(62 + 1)) << "padding repeats the row's last byte";
    EXPECT_EQ(file.at(62 + 3), file.at(62 + 1));

    EXPECT_FALSE(SaveBmp(someRows(StartImageGeometry), StartImageGeometry, folder.path() + QStringLiteral("/s.bmp")));
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/s.bmp")));
}

TEST_F(Symbols, ASaveThatCannotWriteSaysSo)
{
    SetProgramFolder(folder.path() + QStringLiteral("/nowhere")); // template and target are both missing
    user.acceptAnyBox();
    const QString target = folder.path() + QStringLiteral("/nowhere/konf/LokSymbole/3 x.bmp");
    EXPECT_FALSE(SaveBmp(someRows(LokSymbolGeometry), LokSymbolGeometry, target));
    EXPECT_EQ(user.boxes.size(), 2);
}

TEST_F(Symbols, ABrokenSaveLeavesNothingInTheScannedFolder)
{
    const QString symbols = folder.path() + QStringLiteral("/konf/LokSymbole");
    ASSERT_TRUE(QDir().mkpath(symbols + QStringLiteral("/3 taken.bmp"))); // a folder of that name
    user.acceptAnyBox();
    EXPECT_FALSE(SaveBmp(someRows(LokSymbolGeometry), LokSymbolGeometry, symbols + QStringLiteral("/3 taken.bmp")));
    EXPECT_TRUE(SaveBmp(someRows(LokSymbolGeometry), LokSymbolGeometry, symbols + QStringLiteral("/4 x.bmp")));
    EXPECT_EQ(FileNames(symbols), QStringList{QStringLiteral("4 x.bmp")});
    EXPECT_EQ(FileNames(folder.path() + QStringLiteral("/konf")), QStringList{QStringLiteral("temp_loksym.bmp")});
}

TEST_F(Symbols, DamagedTemplateIsReportedAndLeftAlone)
{
    ASSERT_TRUE(ReplaceFile(TemplatePath(48), Bmp({.depth = 8})));
    const QByteArray before = contentOf(TemplatePath(48));
    user.expect(QStringLiteral("Farbtiefe des BMP Files muss 1 sein! Hier: 8"), QStringLiteral("Fehler!"));
    EXPECT_FALSE(SaveBmp(someRows(LokSymbolGeometry), LokSymbolGeometry, folder.path() + QStringLiteral("/x.bmp")));
    EXPECT_EQ(contentOf(TemplatePath(48)), before);
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/x.bmp")));
}

TEST_F(Symbols, CellsHitsAndBits)
{
    const PictureGeometry loco = LokSymbolGeometry;
    EXPECT_EQ(PlaceOfCell(loco, 1).top, 200 + 225 * 15) << "the first row is the bottom one";
    struct Row {
        double x;
        double y;
        int cell;
    };
    const int rightEdge = 200 + 225 * 48;
    for (const Row &row :
        {Row{200, 200, 48 * 15 + 1}, Row{-20, -20, 48 * 15 + 1}, Row{-26, 200, 48 * 15}, Row{424.4, 200, 48 * 15 + 1},
            Row{424.6, 200, 48 * 15 + 2}, Row{rightEdge + 100.0, 200 + 225 * 8, 48 * 8 + 1},
            Row{rightEdge + 100.0, 200, 0}, Row{200, 200 + 225 * 16, 0}, Row{300, 200 + 225 * 15, 1}})
        EXPECT_EQ(CellAt(loco, row.x, row.y), row.cell) << row.x << ' ' << row.y;
    EXPECT_EQ(PlaceOfPixel(48, 0, 1).byte, 6);
    EXPECT_EQ(PlaceOfPixel(14, 13, 0).byte, 1);
    EXPECT_EQ(PlaceOfPixel(14, 13, 0).mask, 0x04);
}

namespace
{

/// A 14 x 14 picture whose top left pixel is black and whose others are white; 24 bits a pixel.
QByteArray TrueColourBmp(bool topDown)
{
    constexpr int stride = 44;
    QByteArray file(54 + stride * 14, '\xFF');
    file.replace(0, 54, QByteArray(54, '\0'));
    file.replace(0, 2, "BM");
    const std::pair<int, int> fields[] = {{10, 54}, {14, 40}, {18, 14}, {22, topDown ? -14 : 14}, {28, 24}};
    for (const auto &[offset, value] : fields)
        qToLittleEndian(value, file.data() + offset);
    file.replace(54 + (topDown ? 0 : 13 * stride), 3, QByteArray(3, '\0'));
    return file;
}

/// The same with alpha: what is not the one pixel is black and fully transparent.
QByteArray TransparentPng()
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = 14;
    image.format = PNG_FORMAT_GA;
    QByteArray pixels(14 * 14 * 2, '\0');
    pixels[1] = '\xFF'; // opaque
    QByteArray file(10'000, '\0');
    auto size = static_cast<png_alloc_size_t>(file.size());
    EXPECT_NE(png_image_write_to_memory(&image, file.data(), &size, 0, pixels.constData(), 0, nullptr), 0);
    file.truncate(static_cast<qsizetype>(size));
    return file;
}

} // namespace

TEST(ImageFiles, StandUprightAndTransparentIsWhite)
{
    PictureRows expected(28, 0);
    expected.at(26) = 0x80; // the top row is the last one
    const std::pair<const char *, QByteArray> files[] = {
        {"a.bmp", TrueColourBmp(false)}, {"b.BMP", TrueColourBmp(true)}, {"c.png", TransparentPng()}};
    for (const auto &[name, content] : files) {
        const ReadImage read = ReadImageFile(QString::fromUtf8(name), content, HalfSymbolGeometry);
        EXPECT_EQ(read.rows, expected) << name << read.fault.toStdString();
        for (const char *format : {"x.bmp", "x.png"}) {
            const QString copy = QString::fromUtf8(format);
            const QByteArray again = ImageFileOf(copy, read.rows, HalfSymbolGeometry);
            EXPECT_EQ(ReadImageFile(copy, again, HalfSymbolGeometry).rows, expected) << format;
        }
    }
}

class Catalogues : public VirtualWorld
{
protected:
    void fill(const char *subfolder, const QStringList &names)
    {
        const QString path = folder.path() + QStringLiteral("/konf/") + QLatin1String(subfolder);
        ASSERT_TRUE(QDir().mkpath(path));
        for (const QString &name : names)
            ASSERT_TRUE(ReplaceFile(path + u'/' + name, "x"));
    }
};

TEST_F(Catalogues, NamesTellNumberAndHalf)
{
    fill("lokFKTsymbole",
        {QStringLiteral("1 Erste.bmp"), QStringLiteral("12 Licht %ON%.bmp"), QStringLiteral("12 Licht %OFF%.bmp"),
            QStringLiteral("5 Pfeil %on%.BMP"), QStringLiteral("9 Lampe.bmp"), QStringLiteral("Licht.bmp"),
            QStringLiteral("257 Viel %ON%.bmp"), QStringLiteral("256 Ende %ON%.bmp"),
            QStringLiteral("x y %OFF%.bmp")});
    fill("MagSymbole",
        {QStringLiteral("4 A %ROT%.bmp"), QStringLiteral("4 B %ROT%.bmp"), QStringLiteral("4 B %GRN%.bmp"),
            QStringLiteral("6 C %GRN%.bmp.x7Gh2a")});
    fill("LokSymbole", {QStringLiteral("7 Dampflok.bmp"), QStringLiteral("007 Zweite")});
    const SymbolFiles functions = ScanFolder(SymbolKind::Function);
    EXPECT_EQ(functions.at(1).at(0), QStringLiteral("1 Erste.bmp")) << "before any marker: the first half";
    EXPECT_EQ(functions.at(12).at(0), QStringLiteral("12 Licht %OFF%.bmp"));
    EXPECT_EQ(functions.at(12).at(1), QStringLiteral("12 Licht %ON%.bmp"));
    EXPECT_EQ(functions.at(5).at(1), QStringLiteral("5 Pfeil %on%.BMP"));
    EXPECT_EQ(functions.at(9).at(1), QStringLiteral("9 Lampe.bmp")) << "the half of the file listed before";
    EXPECT_EQ(functions.at(0).at(0), QStringLiteral("x y %OFF%.bmp"));
    EXPECT_TRUE(functions.at(256).at(1).isEmpty());
    const SymbolFiles accessories = ScanFolder(SymbolKind::Accessory);
    EXPECT_EQ(accessories.at(4).at(0), QStringLiteral("4 B %ROT%.bmp")) << "the later file wins";
    EXPECT_TRUE(accessories.at(6).at(1).isEmpty()) << "left over from a broken save";
    const SymbolFiles locos = ScanFolder(SymbolKind::Loco);
    EXPECT_EQ(locos.at(7).at(0), QStringLiteral("7 Dampflok.bmp"));
    EXPECT_EQ(DescriptionOf(SymbolKind::Function, functions.at(12)), QStringLiteral("12 Licht "));
    EXPECT_EQ(DescriptionOf(SymbolKind::Function, functions.at(5)), QStringLiteral("5 Pfeil "));
    EXPECT_EQ(DescriptionOf(SymbolKind::Loco, locos.at(7)), QStringLiteral("7 Dampflok.bmp"));
    EXPECT_TRUE(DescriptionOf(SymbolKind::Accessory, accessories.at(3)).isEmpty());
}

TEST_F(Catalogues, OnlyAFileOfTheNumberIsReplaced)
{
    const std::pair<const char *, bool> rows[] = {{"0 Lok.bmp", true}, {"000 Lok.bmp", true}, {"Lok 0.bmp", false},
        {"", false}, {"x y.bmp", false}, {"01 Lok.bmp", false}, {"0er Reihe.bmp", false}};
    for (const auto &[name, carries] : rows)
        EXPECT_EQ(CarriesNumber(QString::fromUtf8(name), 0), carries) << name;
}

TEST(PixelCells, PicturesAreShiftedMirroredAndInvertedInTheirOwnGeometry)
{
    constexpr PictureGeometry small{3, 2};
    const auto cells = [](const char *text) { // the bottom row first, as the cells are numbered
        PixelCells result;
        result.fill(Black); // beyond the picture nothing may change and nothing may come in
        for (size_t i = 0; i < 6; ++i)
            result.at(i) = text[i] == '#' ? Black : White;
        return result;
    };
    const PixelCells picture = cells("##."
                                     "#..");
    const std::pair<PixelCells, const char *> table[] = {
        {ShiftedCells(picture, small, 1, 0), ".##.#."},
        {ShiftedCells(picture, small, -1, 0), "#....."},
        {ShiftedCells(picture, small, 0, 1), "...##."},
        {ShiftedCells(picture, small, 0, -1), "#....."},
        {ShiftedCells(picture, small, 3, 0), "......"},
        {MirroredCells(picture, small, true), ".##..#"},
        {MirroredCells(picture, small, false), "#..##."},
        {InvertedCells(picture, small), "..#.##"},
    };
    for (const auto &[result, expected] : table)
        EXPECT_EQ(result, cells(expected)) << expected;
}

} // namespace hr::tests
