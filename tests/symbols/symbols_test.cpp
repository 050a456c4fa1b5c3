#include "link/message_layer.h"
#include "platform/files.h"
#include "symbols/bmp_file.h"
#include "symbols/pixel_picture.h"
#include "symbols/symbol_geometry.h"
#include "tests/support/virtual_world.h"
#include "ui/catalogues/symbol_catalogue.h"

#include <QDir>
#include <QFile>

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
    int load(const QByteArray &content)
    {
        const QString path = folder.path() + QStringLiteral("/test.bmp");
        EXPECT_TRUE(ReplaceFile(path, content));
        int result = 9;
        LoadBmpToSpibuf(path, result);
        return result;
    }

    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(Symbols, FilesAreLoadedRowByRowWithoutTheirPadding)
{
    struct Row {
        SymbolKind kind;
        int stride;
        int offset;
        int rowBytes;
    };
    for (const Row &row :
        {Row{SymbolKind::Loco, 8, 62, 6}, Row{SymbolKind::Loco, 6, 146, 6}, Row{SymbolKind::Function, 4, 62, 2}}) {
        SetSymbolGeometry(row.kind);
        SpiBuf.fill(-1);
        EXPECT_EQ(load(Bmp({SymbolWidth, SymbolHeight, 1, 0, row.offset, row.stride})), 0);
        for (int y = 0; y < SymbolHeight; ++y) {
            for (int i = 0; i < row.rowBytes; ++i)
                EXPECT_EQ(
                    SpiBuf.at(static_cast<size_t>(6 + y * row.rowBytes + i)), 255 - ((y * row.stride + i) & 0xFF));
        }
        EXPECT_EQ(SpiBuf.at(5), -1) << "the size bytes are not written by a load";
        EXPECT_EQ(SpiBuf.at(static_cast<size_t>(6 + SymbolHeight * row.rowBytes)), -1);
    }
    SymbolWidth = 6;
    SymbolHeight = 8;
    EXPECT_EQ(load(Bmp({8, 8, 1, 0, 62, 4})), 0);
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
    SetSymbolGeometry(SymbolKind::Loco);
    SpiBuf.fill(77);
    for (const Row &row : rows) {
        user.expect(QString::fromUtf8(row.message), QStringLiteral("Fehler!"));
        EXPECT_EQ(load(row.file), 1);
    }
    EXPECT_EQ(std::count(SpiBuf.begin(), SpiBuf.end(), 77), SpiBufSize);
}

TEST_F(Symbols, DamagedHeadersNeverCrash)
{
    SetSymbolGeometry(SymbolKind::Loco);
    user.acceptAnyBox();
    const QByteArray good = Bmp({});
    for (int offset = 0; offset < 62; ++offset) {
        for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
            QByteArray damaged = good;
            damaged[offset] = value;
            load(damaged);
        }
    }
    for (qsizetype length = 0; length < good.size(); length += 3)
        EXPECT_EQ(load(good.left(length)), length < 188 ? 1 : 0);
}

TEST_F(Symbols, SavedFilesAreCopiesOfTheTemplateAndLoadAgain)
{
    for (const SymbolKind kind : {SymbolKind::Loco, SymbolKind::Function}) {
        SetSymbolGeometry(kind);
        for (size_t i = 6; i < 110; ++i)
            SpiBuf.at(i) = static_cast<int>(i * 37 % 256);
        const auto before = SpiBuf;
        const QString target = folder.path() + QStringLiteral("/out.bmp");
        int result = 1;
        SaveSpibufToBmp(target, result); // the template is made on first use
        EXPECT_EQ(result, 0);
        EXPECT_EQ(contentOf(target), contentOf(TemplatePath(SymbolWidth)));
        EXPECT_TRUE(contentOf(target).startsWith("BM"));
        SpiBuf.fill(0);
        LoadBmpToSpibuf(target, result);
        EXPECT_EQ(result, 0);
        for (size_t i = 6; i < 6U + static_cast<size_t>(SymbolHeight * RowBytesOf(SymbolWidth)); ++i)
            EXPECT_EQ(SpiBuf.at(i), before.at(i));
        SaveSpibufToBmp(TemplatePath(SymbolWidth), result); // onto the template itself
        EXPECT_EQ(result, 0);
    }
    const QByteArray file = contentOf(TemplatePath(14));
    EXPECT_EQ(file.at(62 + 2), file.at(62 + 1)) << "padding repeats the row's last byte";
    EXPECT_EQ(file.at(62 + 3), file.at(62 + 1));

    SetStartImageGeometry();
    int result = 0;
    SaveSpibufToBmp(folder.path() + QStringLiteral("/start.bmp"), result);
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/start.bmp")));
}

TEST_F(Symbols, DamagedTemplateIsReportedAndLeftAlone)
{
    SetSymbolGeometry(SymbolKind::Loco);
    ASSERT_TRUE(ReplaceFile(TemplatePath(48), Bmp({.depth = 8})));
    const QByteArray before = contentOf(TemplatePath(48));
    user.expect(QStringLiteral("Farbtiefe des BMP Files muss 1 sein! Hier: 8"), QStringLiteral("Fehler!"));
    int result = 0;
    SaveSpibufToBmp(folder.path() + QStringLiteral("/x.bmp"), result);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(contentOf(TemplatePath(48)), before);
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/x.bmp")));
}

TEST_F(Symbols, PixelsCellsAndHits)
{
    SetSymbolGeometry(SymbolKind::Loco);
    SpiBuf.fill(0);
    SpiBuf.at(6) = 0x80;
    LoadCellsFromBuffer();
    EXPECT_EQ(Pixel.at(0), Black);
    EXPECT_EQ(Pixel.at(1), White);
    EXPECT_EQ(PlaceOfCell(1).top, 200 + 225 * 15) << "the first row is the bottom one";
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
        EXPECT_EQ(CellAt(row.x, row.y), row.cell) << row.x << ' ' << row.y;

    SetSymbolGeometry(SymbolKind::Function);
    SpiBuf.fill(0xFF);
    ClearCells();
    Pixel.at(13) = Black;
    StoreCellsInBuffer();
    EXPECT_EQ(SpiBuf.at(6), 0);
    EXPECT_EQ(SpiBuf.at(7), 0x07) << "column 13 and the two unused bits";
    EXPECT_EQ(SpiBuf.at(34), 0xFF);
    SymbolNoHeader = true;
    EXPECT_EQ(GetColor_from_SPIBUF(0, 0), Black) << "rows begin at index 4 without size bytes";
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
        {QStringLiteral("4 A %ROT%.bmp"), QStringLiteral("4 B %ROT%.bmp"), QStringLiteral("4 B %GRN%.bmp")});
    fill("LokSymbole", {QStringLiteral("7 Dampflok.bmp"), QStringLiteral("007 Zweite")});
    ScanCatalogues();
    const SymbolFiles &functions = Katalog(SymbolKind::Function);
    EXPECT_EQ(functions.at(1).at(0), QStringLiteral("1 Erste.bmp")) << "before any marker: the first half";
    EXPECT_EQ(functions.at(12).at(0), QStringLiteral("12 Licht %OFF%.bmp"));
    EXPECT_EQ(functions.at(12).at(1), QStringLiteral("12 Licht %ON%.bmp"));
    EXPECT_EQ(functions.at(5).at(1), QStringLiteral("5 Pfeil %on%.BMP"));
    EXPECT_EQ(functions.at(9).at(1), QStringLiteral("9 Lampe.bmp")) << "the half of the file listed before";
    EXPECT_EQ(functions.at(0).at(0), QStringLiteral("x y %OFF%.bmp"));
    EXPECT_TRUE(functions.at(256).at(1).isEmpty());
    EXPECT_EQ(Katalog(SymbolKind::Accessory).at(4).at(0), QStringLiteral("4 B %ROT%.bmp")) << "the later file wins";
    EXPECT_EQ(Katalog(SymbolKind::Loco).at(7).at(0), QStringLiteral("7 Dampflok.bmp"));
    EXPECT_EQ(Description(SymbolKind::Function, 12), QStringLiteral("12 Licht "));
    EXPECT_EQ(Description(SymbolKind::Function, 5), QStringLiteral("5 Pfeil "));
    EXPECT_EQ(Description(SymbolKind::Loco, 7), QStringLiteral("7 Dampflok.bmp"));
    EXPECT_TRUE(Description(SymbolKind::Accessory, 3).isEmpty());
    EXPECT_TRUE(PicturePath(SymbolKind::Accessory, 500, 0).isEmpty());
}
