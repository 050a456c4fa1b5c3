#include "fuzz/file_readers.h"
#include "handheld/backup/dds_file.h"
#include "handheld/backup/number_list.h"
#include "jobs/selection.h"
#include "platform/files.h"
#include "tests/support/virtual_world.h"

#include <QDir>
#include <QFile>

#include <random>

namespace hr::tests
{

namespace
{

std::vector<int> NumbersOf(const QString &text)
{
    std::vector<int> numbers;
    NumberList list(text);
    for (int n = list.next(); n >= 0 && numbers.size() < 20; n = list.next())
        numbers.push_back(n);
    return numbers;
}

QByteArray SeedFile(const QString &name)
{
    QFile file(QStringLiteral(HR_FUZZ_CORPUS "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

} // namespace

TEST(NumberLists, AreReadAsTheyComeAndCheckedForTheWindow)
{
    struct Row {
        const char *text;
        std::vector<int> numbers;
        const char *fault; // for 0..63
    };
    const Row rows[] = {{"1-5,8", {1, 2, 3, 4, 5, 8}, ""}, {" 0 , 6 3 ,\n", {0, 63}, ""}, {"8,8,1", {8, 8, 1}, ""},
        {"64", {64}, "\"64\" liegt nicht zwischen 0 und 63"},
        {"60-70", {60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70}, "\"60-70\" liegt nicht zwischen 0 und 63"},
        {"5-2,7", {7}, "\"5-2\": die kleinere Nummer gehört nach vorn"},
        {"1-x,3", {3}, "\"1-x\" ist keine Nummer und kein Bereich wie 1-5"},
        {"-4", {}, "\"-4\" ist keine Nummer und kein Bereich wie 1-5"},
        {"1-2-3", {}, "\"1-2-3\" ist keine Nummer und kein Bereich wie 1-5"},
        {"2147483646-99999999999", {2147483646, 2147483647},
            "\"2147483646-99999999999\" liegt nicht zwischen 0 und 63"},
        {" ,", {}, "es ist keine Nummer angegeben"}, {"", {}, "es ist keine Nummer angegeben"}};
    for (const Row &row : rows) {
        const QString text = QString::fromUtf8(row.text);
        EXPECT_EQ(NumbersOf(text), row.numbers) << row.text;
        EXPECT_EQ(NumberListFault(text, 0, 63).toStdString(), row.fault) << row.text;
    }
    const std::vector<int> found{3, 1, 2, 9, 11, 13, 15, 17, 19, 21, 23, 25};
    EXPECT_EQ(TenPerLine(found), QStringLiteral("3,1,2,9,11,13,15,17,19,21,\n23,25"));
    EXPECT_EQ(ShortList(found, QStringLiteral("|")), QStringLiteral("1-3,9,11,13,15,17,19,21,23,25"));
}

TEST(DdsFile, FaultsAreNamedWithRecordAndByte)
{
    const QByteArray two = SeedFile(QStringLiteral("two_locos.dds"));
    ASSERT_EQ(two.size(), 152);
    struct Row {
        qsizetype at;
        char value;
        int record;
        qsizetype position;
    };
    const Row rows[] = {{0, 0, 1, 0}, {0, 10, 1, 0}, {76, '\xFF', 2, 76}, {78, '\x10', 2, 77}, // address 10000
        {2, 0, 1, 2}, {50, 2, 1, 50}, {75, 2, 1, 75}, {74, 7, 1, 74}};
    for (const Row &row : rows) {
        QByteArray damaged = two;
        damaged[row.at] = row.value;
        if (row.at == 2)
            damaged[1] = 0; // address 0
        const DdsContent content = ReadDds(damaged);
        ASSERT_TRUE(content.fault) << row.at;
        EXPECT_EQ(content.fault->recordNumber, row.record) << row.at;
        EXPECT_EQ(content.fault->position, row.at == 2 ? 1 : row.position) << row.at;
        EXPECT_EQ(content.records.size(), static_cast<size_t>(row.record - 1)) << row.at;
    }
}

TEST(DdsFile, NoBytesWhateverGiveMoreThanTheyHold)
{
    const QByteArray all = SeedFile(QStringLiteral("all_kinds.dds"));
    EXPECT_EQ(ReadDds(all).records.size(), 9U);
    EXPECT_FALSE(ReadDds(all).fault);
    QList<qsizetype> ends{0};
    for (const DdsRecord &record : ReadDds(all).records)
        ends += record.position + record.bytes.size();
    for (qsizetype cut = 0; cut < all.size(); ++cut) {
        ASSERT_EQ(ReadAsEveryFile(all.left(cut)), nullptr) << cut;
        EXPECT_EQ(ReadDds(all.left(cut)).fault.has_value(), !ends.contains(cut)) << cut;
    }
    for (int kind = 0; kind < 256; ++kind)
        ASSERT_EQ(ReadAsEveryFile(QByteArray(1, static_cast<char>(kind)) + all.mid(1)), nullptr) << kind;
    for (const QString &name : QDir(QStringLiteral(HR_FUZZ_CORPUS)).entryList(QDir::Files))
        ASSERT_EQ(ReadAsEveryFile(SeedFile(name)), nullptr) << name.toStdString();
    std::mt19937 dice(5);
    for (int round = 0; round < 3'000; ++round) {
        QByteArray damaged = all;
        for (int i = 0; i < 3; ++i)
            damaged[static_cast<qsizetype>(dice() % 420)] = static_cast<char>(dice());
        ASSERT_EQ(ReadAsEveryFile(damaged), nullptr) << round;
    }
}

class SavedSelection : public VirtualWorld
{
protected:
    SavedSelection() { ResetSelection(); }
    ~SavedSelection() override { ResetSelection(); }
    QString path() { return folder.path() + QStringLiteral("/konf/Sicherung.txt"); }
};

TEST_F(SavedSelection, IsKeptLineByLine)
{
    const BackupSelection none = ReadSelection();
    EXPECT_TRUE(NothingWanted(none));
    EXPECT_EQ(SelectionText(none),
        QByteArray("LokDaten:0 \r\nLokSymbole:0 \r\nLokFktSymbole:0 \r\nMagSymbole:0 \r\nFSdaten:0\r\n"
                   "MagSymZuord:0\r\nMagListe:0\r\nLokSuche:0\r\nLokSucheAdrStart:1\r\nLokSucheAdrStop:9999\r\n"
                   "AlleLokSym:0\r\nAlleFktSym:0\r\nAlleMagSym:0\r\n"));
    const QByteArray seed = SeedFile(QStringLiteral("Sicherung.txt"));
    EXPECT_EQ(SelectionText(ParseSelection("Unbekannt:1\n" + seed)), seed);
    const BackupSelection odd = ParseSelection(SeedFile(QStringLiteral("Sicherung_odd.txt")));
    EXPECT_TRUE(odd.numbered.at(LokDatenList).wanted);
    EXPECT_EQ(odd.lokSucheStart, 1);
    EXPECT_EQ(odd.lokSucheStop, 9999);
    WriteSelection(ParseSelection(seed));
    EXPECT_EQ(SelectionText(ReadSelection()), seed);
}

TEST_F(SavedSelection, HoldsForTheRunWhereItCannotBeWritten)
{
    QDir().mkpath(path()); // a folder of that name cannot be replaced
    user.acceptAnyBox();
    BackupSelection selection;
    selection.magListe = true;
    WriteSelection(selection);
    EXPECT_EQ(user.boxes.size(), 1);
    EXPECT_TRUE(ReadSelection().magListe);
}

TEST(Selection, IsEstimatedByItsMessages)
{
    BackupSelection selection;
    selection.numbered.at(LokDatenList) = {true, false, QStringLiteral("1-10")};
    selection.numbered.at(FktSymbolList) = {true, true, QString()};
    selection.fsDaten = selection.magSymZuord = selection.magListe = true;
    EXPECT_NEAR(EstimatedSeconds(selection), (37 + 256 * 3.7 + 24 + 160 + 20) * 0.15, 0.01);
    EXPECT_EQ(DurationText(61), QStringLiteral("Dauer: ca. 2 Minuten"));
    EXPECT_EQ(DurationText(3'600), QStringLiteral("Dauer: ca. 1 Std. 0 Min."));
}

} // namespace hr::tests
