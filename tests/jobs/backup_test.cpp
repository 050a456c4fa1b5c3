#include "jobs/backup.h"

#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "jobs/clean_up.h"
#include "jobs/restore.h"
#include "jobs/spread.h"
#include "program/run_control.h"
#include "sim/demo_content.h"
#include "tests/support/virtual_world.h"

#include <QDir>
#include <QFile>

#include <set>

namespace hr::tests
{

class BackupTest : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        sim::FillDemoContent(flash());
        events.limitSeconds = 40'000;
    }

    static BackupSelection listOf(NumberedKind kind, const char *list)
    {
        BackupSelection selection;
        selection.numbered.at(kind) = {true, false, QLatin1String(list)};
        return selection;
    }

    static BackupSelection everything()
    {
        BackupSelection selection;
        for (const NumberedKind kind : {LokSymbolList, FktSymbolList, MagSymbolList})
            selection.numbered.at(kind) = {true, true, QString()};
        selection.lokSuche = selection.fsDaten = selection.magSymZuord = selection.magListe = true;
        return selection;
    }

    QString path(const char *name = "test.dds") { return folder.path() + u'/' + QString::fromUtf8(name); }
    QString shown(const char *name = "test.dds") { return QDir::toNativeSeparators(path(name)); }

    QByteArray content(const char *name = "test.dds")
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void lay(const QByteArray &bytes)
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    /// What the command does with a file when the user says Yes.
    RestoreOutcome restore(const char *name = "test.dds")
    {
        const auto offer = OfferRestore(path(name));
        return offer ? Restore(offer->records) : RestoreOutcome{JobEnd::NothingDone, {}, {}, {}};
    }

    QByteArray backedUp(const BackupSelection &selection)
    {
        EXPECT_EQ(Backup(path(), selection).end, JobEnd::Complete);
        return content();
    }

    /// A file without the bytes that its symbol records carry beyond the pictures.
    static QByteArray definedBytes(const QByteArray &file)
    {
        QByteArray bytes;
        for (const DdsRecord &record : ReadDds(file).records) {
            const bool isSymbol = record.bytes.size() == 102 || record.bytes.size() == 39;
            const int beyond = record.bytes.size() == 102 ? 1 : 5;
            bytes += record.bytes.chopped(isSymbol ? beyond : 0);
        }
        return bytes;
    }

    int programs() { return executed(0x83); }

    static QByteArray packLoco(int address, const LocoRecord &record)
    {
        return PackRecord({RecordKind::Loco, address}, record);
    }

    /// Loco n named "LOK n" with its symbol n; 76 bytes each.
    static QByteArray locoFile(int first, int last)
    {
        QByteArray file;
        for (int n = first; n <= last; ++n)
            file += packLoco(n, {QStringLiteral("LOK %1").arg(n), {}, {}, 0, n % 64});
        return file;
    }
};

TEST_F(BackupTest, AllLocoSymbolsAre6528Bytes)
{
    BackupSelection selection;
    selection.numbered.at(LokSymbolList) = {true, true, QStringLiteral("not used")};
    const QByteArray file = backedUp(selection);
    EXPECT_EQ(file.size(), 6528);
    EXPECT_EQ(file.mid(6426, 3), QByteArray("\x02\x00\x3F", 3));
    EXPECT_EQ(file.mid(6429, 98), flashBytes(0x110000 + 63 * 512, 98));
    EXPECT_EQ(user.progress.first(), QStringLiteral("Lok.Symbol: 0"));
    EXPECT_EQ(user.progress.last(), QStringLiteral("Lok.Symbol: 63"));
}

TEST_F(BackupTest, LocoRecordsAreKeptByteForByte)
{
    flash().setBytes(300 * 64, flashBytes(151 * 64, 64));
    flash().setBytes(300 * 64, QByteArray("\x26\x35", 2)); // a character the PC has, one that no one has
    const QByteArray file = backedUp(listOf(LokDatenList, "300,4000,3,300"));
    ASSERT_EQ(file.size(), 2 * 76) << "4000 is empty, 300 is listed twice";
    const QByteArray flashRecord = flashBytes(300 * 64, 64);
    EXPECT_EQ(file.left(5), QByteArray("\x01\x01\x2C\xDC\xFF", 5));
    EXPECT_EQ(file.mid(5, 3), QByteArray("1 0"));
    EXPECT_EQ(file.at(24), flashRecord.at(61));
    EXPECT_EQ(file.mid(26, 24), flashRecord.mid(33, 24));
    for (int f = 0; f < 25; ++f)
        EXPECT_EQ(file.at(50 + f), flashRecord.at(28 + f / 8) >> f % 8 & 1) << f;
    EXPECT_EQ(file.at(75), 1);
    EXPECT_EQ(file.mid(76, 3), QByteArray("\x01\x00\x03", 3));
}

TEST_F(BackupTest, BackupEraseRestoreBackup)
{
    const QByteArray before = flashBytes(0, sim::FlashSize);
    const BackupOutcome outcome = Backup(path("first.dds"), everything());
    EXPECT_EQ(outcome.end, JobEnd::Complete);
    EXPECT_EQ(outcome.found.size(), 26U);
    EXPECT_EQ(outcome.found.back(), 9999);
    for (const int area : {0, MagZuordAddress, FktSymbolAddress, MagSymbolAddress, LokSymbolAddress})
        flash().setBytes(area, QByteArray(0x8000, '\xFF'));
    flash().setBytes(0, QByteArray(640'000, '\xFF'));
    flash().setBytes(RoutesAddress, QByteArray(512, '\xFF'));
    flash().setBytes(MagListeAddress, QByteArray(512, '\xFF'));
    const RestoreOutcome restored = restore("first.dds");
    EXPECT_EQ(restored.end, JobEnd::Complete);
    EXPECT_EQ(restored.written.size(), 26U + 64 + 4 * 256 + 3);
    BackupSelection again = everything();
    again.lokSuche = false; // the whole search once is enough
    again.numbered.at(LokDatenList) = {true, false, TenPerLine(outcome.found)};
    EXPECT_EQ(Backup(path("second.dds"), again).end, JobEnd::Complete);
    EXPECT_EQ(definedBytes(content("first.dds")), definedBytes(content("second.dds")));

    for (const int n : outcome.found) {
        const QByteArray now = flashBytes(n * 64, 64);
        for (const auto &[offset, size] : {std::pair(0, 21), std::pair(28, 4), std::pair(33, 24), std::pair(61, 1)})
            EXPECT_EQ(now.mid(offset, size), before.mid(n * 64 + offset, size)) << n;
    }
    EXPECT_EQ(flashBytes(0x0E0001, 2048), before.mid(0x0E0001, 2048));
    EXPECT_EQ(flashBytes(0x3F0204, 320), before.mid(0x3F0204, 320));
    EXPECT_EQ(flashBytes(0x3F0808, 256), before.mid(0x3F0808, 256));
    for (int n = 0; n < 512; ++n) // halves of function symbols, then of accessory symbols
        for (const int area : {FktSymbolAddress, MagSymbolAddress})
            ASSERT_EQ(flashBytes(area + n * 32, 30), before.mid(area + n * 32, 30)) << n;
    for (int n = 0; n < 64; ++n)
        EXPECT_EQ(flashBytes(0x110000 + n * 512, 98), before.mid(0x110000 + n * 512, 98)) << n;
}

TEST_F(BackupTest, ListAndSearchReadAnAddressOnce)
{
    BackupSelection selection = listOf(LokDatenList, "24,3");
    selection.lokSuche = true;
    selection.lokSucheStop = 24;
    const BackupOutcome outcome = Backup(path(), selection);
    EXPECT_EQ(outcome.found, (std::vector<int>{1, 3, 8, 18, 24}));
    QList<int> addresses;
    for (const DdsRecord &record : ReadDds(content()).records)
        addresses += record.id.number;
    EXPECT_EQ(addresses, (QList<int>{24, 3, 1, 8, 18}));
}

TEST_F(BackupTest, ABrokenOffBackupLeavesTheOldFile)
{
    lay("old");
    events.after(4'000'000, ConfirmStop);
    BackupOutcome outcome = Backup(path(), everything());
    EXPECT_EQ(outcome.end, JobEnd::Stopped);
    user.expect(QStringLiteral("Die Datensicherung wurde angehalten.\rEs wurde kein Datensatz gesichert.\r"
                               "Die vorhandene Datei %1 ist unverändert.")
                    .arg(shown()),
        QStringLiteral("Achtung!"));
    ReportBackup(outcome);

    user.acceptAnyBox();
    user.boxes.clear();
    events.after(4'000'000, [this] { port.hangUp(); });
    outcome = Backup(path("new.dds"), listOf(LokDatenList, "1-20"));
    EXPECT_EQ(outcome.end, JobEnd::PortLost);
    ReportBackup(outcome);
    ASSERT_EQ(user.boxes.size(), 1) << "the job tells the loss, not the port on top of it";
    EXPECT_TRUE(user.boxes.constLast().endsWith(u"wurde nicht angelegt."));
    port.replug();
    port.open();
    strike(&sim::Faults::hangUp, 2); // in the middle of the last record
    EXPECT_EQ(Backup(path(), listOf(LokDatenList, "1")).end, JobEnd::PortLost);
    EXPECT_EQ(content(), "old");
    EXPECT_FALSE(QFile::exists(path("new.dds")));
}

TEST_F(BackupTest, AFileThatCannotBeWrittenIsToldBeforeTheReading)
{
    user.acceptAnyBox();
    EXPECT_EQ(Backup(path("missing/x.dds"), everything()).end, JobEnd::NothingDone);
    EXPECT_EQ(user.boxes.size(), 1);
    EXPECT_EQ(handheld().state.readBacks, 0);
}

TEST_F(BackupTest, DoubtfulRecordsAreInTheFileAndNamed)
{
    strike(&sim::Faults::lostAck, 2); // the flash read of the second record
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
    const BackupOutcome outcome = Backup(path(), listOf(LokDatenList, "1,3,8,4000"));
    EXPECT_EQ(ReadDds(content()).records.size(), 3U);
    user.expect(QStringLiteral("Der Handregler hat nicht immer geantwortet.\r\r"
                               "1 Datensatz in der Datei zweifelhaft:\rLokdatensätze: 3\r\rGespeichert in %1.")
                    .arg(shown()),
        QStringLiteral("Achtung!"));
    ReportBackup(outcome);

    flash().setBytes(4000 * 64, QByteArray(64, '\x60')); // begins with a character that no handheld writes
    user.expect(QStringLiteral("Nicht alles, was vom Handregler kam, ist eindeutig.\r\r"
                               "1 Datensatz als leer gelesen und nicht in der Datei, ebenfalls zweifelhaft:\r"
                               "Lokdatensätze: 4000\r\rGespeichert in %1.")
                    .arg(shown("strange.dds")),
        QStringLiteral("Achtung!"));
    ReportBackup(Backup(path("strange.dds"), listOf(LokDatenList, "3-4,4000")));
}

TEST_F(BackupTest, ADoubtfulBackupReplacesAGoodOneOnlyWhenTheUserSaysSo)
{
    const QString title = QStringLiteral("Datei ersetzen?");
    const QString beside = folder.path() + QStringLiteral("/test (unvollständig).dds");
    const QString question = QStringLiteral("Die neue Datensicherung ist unvollständig oder zweifelhaft.\r"
                                            "Soll sie die vorhandene Datei %1 trotzdem ersetzen?\r"
                                            "(Nein: sie wird als %2 gespeichert)")
                                 .arg(shown(), QDir::toNativeSeparators(beside));
    for (const char *answer : {"Nein", "Ja"}) {
        lay("old");
        QFile::remove(beside);
        strike(&sim::Faults::lostAck, 2);
        user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
        user.expect(question, title, QString::fromUtf8(answer));
        const BackupOutcome outcome = Backup(path(), listOf(LokDatenList, "1,3"));
        EXPECT_FALSE(user.defaultYes);
        const bool replaced = QString::fromUtf8(answer) == u"Ja";
        EXPECT_EQ(outcome.fileName, replaced ? path() : beside);
        EXPECT_EQ(content() == "old", !replaced);
        if (!replaced) {
            EXPECT_EQ(content("test (unvollständig).dds").size(), 2 * 76);
        }
    }
    lay("old");
    user.expect(
        QStringLiteral("Es wurde kein Datensatz gelesen.\rSoll sie die vorhandene Datei %1 trotzdem ersetzen?")
            .arg(shown()),
        title, QStringLiteral("Nein"));
    EXPECT_EQ(Backup(path(), listOf(LokDatenList, "4000-4003")).end, JobEnd::NothingDone);
    EXPECT_EQ(content(), "old");
}

TEST_F(BackupTest, RestoreWritesInFileOrderAndNothingBesides)
{
    const QByteArray before = flashBytes(0, 2048);
    lay(packLoco(300, {QStringLiteral("Müller"), {}, {}, 1, 9}) + locoFile(9, 9));
    EXPECT_EQ(restore().written.size(), 2U);
    EXPECT_EQ(user.progress, (QStringList{QStringLiteral("Lok-Daten: 300"), QStringLiteral("Lok-Daten: 9")}));
    QByteArray record(64, '\xFF');
    const char name[] = {22, 38, 21, 21, 14, 27};
    record.replace(0, 21, QByteArray(name, 6).append(15, 39));
    record.replace(28, 4, QByteArray("\x00\x00\x00\x80", 4));
    record.replace(33, 24, QByteArray(24, 0));
    record[61] = 9;
    EXPECT_EQ(flashBytes(300 * 64, 64).toHex(' ').toStdString(), record.toHex(' ').toStdString());
    EXPECT_EQ(flashBytes(0, 9 * 64), before.left(576));
    EXPECT_EQ(flashBytes(10 * 64, 1024), before.mid(640, 1024));
}

TEST_F(BackupTest, TheOfferNamesWhatTheFileHoldsAndTheEndWhatWasWritten)
{
    lay(locoFile(1, 2) + packLoco(8, {}) + PackRecord({RecordKind::LocoSymbol, 3}, EmptyPicture(SymbolKind::Loco))
        + PackRecord({RecordKind::RouteTable, 0}, Routes{}));
    const auto offer = OfferRestore(path());
    EXPECT_EQ(offer->question.text,
        QStringLiteral("Die Datei %1 enthält:\r3 Lokdatensätze: 1-2, 8; 1 Loksymbole; Fahrstraßen.\r\r"
                       "Was der Handregler davon schon hat, wird überschrieben.\rDauer: höchstens 1 Minute.\r\r"
                       "Soll die Datensicherung in den Handregler geschrieben werden?")
            .arg(shown()));
    user.expect(QStringLiteral("In den Handregler geschrieben:\r3 Lokdatensätze: 1-2, 8; 1 Loksymbole; Fahrstraßen"),
        QStringLiteral("Datensicherung zurückschreiben"));
    ReportRestore(Restore(offer->records));
    ASSERT_EQ(user.amounts.size(), 5U) << "a long job shows how far it is";
    EXPECT_LT(user.amounts.front().secondsLeft, 0);
    EXPECT_EQ(user.amounts.back().done, 4U);
    EXPECT_NEAR(user.amounts.back().secondsLeft, 21 * 0.15, 0.2) << "of the routes, which cost more than a loco";
    user.expect(QStringLiteral("Gesichert in %1:\r1 Lokdatensatz: 1; Fahrstraßen").arg(shown("b.dds")),
        QStringLiteral("Datensicherung"));
    BackupSelection selection = listOf(LokDatenList, "1");
    selection.fsDaten = true;
    ReportBackup(Backup(path("b.dds"), selection));
}

TEST_F(BackupTest, ADamagedFileIsCheckedBeforeAnythingIsWritten)
{
    const QByteArray good = locoFile(1, 2);
    const auto question = [&](int record, int position, const char *reason) {
        return QStringLiteral("Die Datei %1 ist beschädigt!\rDatensatz %2, Byteposition %3: %4.\r\r")
            .arg(shown())
            .arg(record)
            .arg(position)
            .arg(QString::fromUtf8(reason));
    };
    const QString offer =
        QStringLiteral("Unversehrt davor: 2 Datensätze. Sollen diese in den Handregler geschrieben werden?");
    lay(good + '\x0A');
    EXPECT_EQ(OfferRestore(path())->question.text, question(3, 152, "die Satzart 10 gibt es nicht") + offer);
    lay(good + QByteArray(256, '\x09'));
    const auto damaged = OfferRestore(path());
    EXPECT_EQ(
        damaged->question.text, question(3, 408, "die Datei endet mitten im Datensatz (256 von 257 Bytes)") + offer);
    EXPECT_EQ(damaged->question.title, QStringLiteral("Fehler!"));
    EXPECT_EQ(programs(), 0);
    EXPECT_EQ(Restore(damaged->records).written.size(), 2U);
    EXPECT_EQ(programs(), 2);

    lay(QByteArray(1, 0));
    user.expect(question(1, 0, "die Satzart 0 gibt es nicht")
            + QStringLiteral("Es wird nichts in den Handregler geschrieben."),
        QStringLiteral("Fehler!"));
    EXPECT_FALSE(OfferRestore(path()));
    lay(QByteArray());
    user.expect(QStringLiteral("Die Datei %1 enthält keine Daten!").arg(shown()), QStringLiteral("Achtung!"));
    EXPECT_FALSE(OfferRestore(path()));
    user.expect(
        QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(shown("none.dds")), QStringLiteral("Fehler!"));
    EXPECT_FALSE(OfferRestore(path("none.dds")));
    EXPECT_EQ(programs(), 2);
}

TEST_F(BackupTest, ALostPortIsToldWithExactlyWhatIsWritten)
{
    const QByteArray wanted = locoFile(1, 12);
    for (int nth = 1; nth <= 72; nth += nth == 24 ? 42 : 1) { // the first four records and the last
        port.replug();
        port.open();
        flash().setBytes(0, QByteArray(1'024, '\xFF'));
        sim::Faults faults;
        faults.hangUp.nth = nth;
        layout().faults.set(faults);
        lay(wanted);
        user.acceptAnyBox();
        const RestoreOutcome outcome = restore();
        ASSERT_EQ(outcome.end, JobEnd::PortLost) << nth;
        ASSERT_EQ(outcome.written.size() + outcome.doubtful.size() + outcome.untouched.size(), 12U) << nth;
        EXPECT_LE(outcome.doubtful.size(), 1U) << nth;
        std::set<int> whole;
        for (const RecordId &id : outcome.written)
            whole.insert(id.number);
        for (const RecordId &id : outcome.untouched)
            EXPECT_EQ(flashBytes(id.number * 64, 64), QByteArray(64, '\xFF')) << nth;
        for (const int n : whole)
            EXPECT_EQ(flashBytes(n * 64 + 61, 1), QByteArray(1, static_cast<char>(n))) << nth;
        user.boxes.clear();
        ReportRestore(outcome);
        ASSERT_EQ(user.boxes.size(), 1) << nth;
        const QString box = user.boxes.constLast();
        EXPECT_TRUE(box.startsWith(u"Fehler!: Die Verbindung zum Handregler ging verloren.\r\rGeschrieben:\r"));
        EXPECT_TRUE(box.contains(u"\r\rNicht geschrieben:\r"));
    }
}

TEST_F(BackupTest, AStoppedRestoreAndTheProgramsEndFinishTheRecord)
{
    lay(locoFile(1, 12));
    events.after(2'500'000, ConfirmStop);
    const RestoreOutcome outcome = restore();
    EXPECT_EQ(outcome.end, JobEnd::Stopped);
    EXPECT_EQ(static_cast<int>(outcome.written.size()), programs());
    const int written = programs();
    user.expect(QStringLiteral("Das Zurückschreiben wurde angehalten.\r\rGeschrieben:\rLokdatensätze: 1-%1"
                               "\r\rNicht geschrieben:\rLokdatensätze: %2-12")
                    .arg(written)
                    .arg(written + 1),
        QStringLiteral("Achtung!"));
    ReportRestore(outcome);
    for (int us = 2'000'000; us < 3'000'000; us += 130'000) {
        ResetRunControl();
        events.after(us, RequestEnd);
        EXPECT_EQ(restore().end, JobEnd::ProgramEnds);
        EXPECT_EQ(flash().state.executed.at(0x53), programs()) << "every loaded page is programmed";
    }
}

TEST_F(BackupTest, ARestoreTriesAgainAndNeverProgramsFromADoubtfulBuffer)
{
    lay(locoFile(9, 11));
    flash().setBytes(512, QByteArray(512, '\x0A'));
    for (int message = 1; message <= 18; ++message) { // of the three records
        user.acceptAnyBox();
        strike(&sim::Faults::missedRequest, message);
        const RestoreOutcome outcome = restore();
        EXPECT_EQ(outcome.end, JobEnd::Complete) << message;
        EXPECT_EQ(outcome.written.size(), 3U) << message;
        for (int n = 9; n <= 11; ++n)
            EXPECT_EQ(flashBytes(n * 64 + 61, 1), QByteArray(1, static_cast<char>(n))) << message;
        EXPECT_EQ(flashBytes(512, 64), QByteArray(64, '\x0A')) << message;
        layout().faults.set({});
    }
    handheld().settings.present = false;
    user.boxes.clear();
    const int before = programs();
    const RestoreOutcome outcome = restore();
    EXPECT_EQ(outcome.end, JobEnd::NoAnswer);
    EXPECT_EQ(outcome.untouched.size(), 3U) << "given up before the page was programmed";
    EXPECT_EQ(user.boxes, QStringList{QStringLiteral("move_spibuf_to_buf1: Timeout")});
    EXPECT_EQ(programs(), before);
    ReportRestore(outcome);
    EXPECT_TRUE(
        user.boxes.constLast().startsWith(u"Fehler!: Der Handregler antwortet nicht mehr.\r\rGeschrieben:\rkeine"));
}

class CleanUp : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        for (int address = 0; address < 1024; address += 2)
            flash().setBytes(address, QByteArray("\x0A\x27", 2));
    }
};

TEST_F(CleanUp, ClearAllDeletesUntilSomethingStopsIt)
{
    events.limitSeconds = 10'000;
    layout().bus.keepLog = false;
    EXPECT_EQ(ClearAllLocoRecords().end, JobEnd::Complete);
    EXPECT_EQ(executed(0x83), 9999);
    EXPECT_EQ(user.progress.constFirst(), QStringLiteral("Lösche Lok 1"));
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Lösche Lok 9999"));
    EXPECT_NEAR(static_cast<double>(events.nowUs) / 60e6, 75, 6); // minutes
}

TEST_F(CleanUp, ClearAllEndsWithAFailureAStopAHangUpAndTheProgram)
{
    struct Row {
        std::function<void()> event;
        bool timeout;
        JobEnd end;
    };
    const Row rows[] = {{[this] { handheld().settings.present = false; }, true, JobEnd::NoAnswer},
        {ConfirmStop, false, JobEnd::Stopped}, {[this] { port.hangUp(); }, false, JobEnd::PortLost},
        {RequestEnd, false, JobEnd::ProgramEnds}};
    for (const Row &row : rows) {
        const int before = executed(0x83);
        user.acceptAnyBox();
        events.after(3'000'000, row.event);
        EXPECT_EQ(ClearAllLocoRecords().end, row.end);
        EXPECT_LT(executed(0x83) - before, 8);
        EXPECT_EQ(user.boxes.join(u'|').contains(QStringLiteral("Timeout")), row.timeout);
        user.boxes.clear();
        handheld().settings.present = true;
        port.replug();
        if (!port.isOpen()) {
            ASSERT_TRUE(port.open());
        }
    }
}

TEST_F(CleanUp, TheSymbolResetWritesBothHalvesInOrder)
{
    flash().setBytes(FktSymbolAddress, QByteArray(256 * 64, '\x55'));
    EXPECT_EQ(ResetFktSymbols().end, JobEnd::Complete);
    EXPECT_EQ(flashBytes(FktSymbolAddress, 164 * 64), QByteArray(164 * 64, '\x55'));
    const QByteArray half = QByteArray("\x06\x0D", 2) + QByteArray(28, '\0') + QByteArray(2, '\x55');
    EXPECT_EQ(flashBytes(FktSymbolAddress + 164 * 64, 92 * 64), half.repeated(184));
    EXPECT_EQ(user.progress.constFirst(), QStringLiteral("Fktsym. 164"));
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Fktsym. 255"));
    strike(&sim::Faults::hangUp, 5); // the first message of the second half
    user.acceptAnyBox();
    flash().setBytes(FktSymbolAddress, QByteArray(256 * 64, '\x55'));
    EXPECT_EQ(ResetFktSymbols().end, JobEnd::PortLost);
    EXPECT_EQ(flashBytes(FktSymbolAddress + 164 * 64, 64), half + QByteArray(32, '\x55'));
}

TEST_F(BackupTest, FunctionsAreSpreadOverOtherLocosAndEmptyRecordsStayEmpty)
{
    SpiImage image{};
    LocoRecord from = ReadLoco(image, 3).value;
    from.symbols.at(5) = 77;
    const LocoRecord before = ReadLoco(image, 8).value;
    const BoxText *asked = nullptr;
    const auto refuse = [&asked](const BoxText &question) {
        asked = &question;
        return false;
    };
    SpreadFunctions(from, QStringLiteral("8"), refuse);
    EXPECT_NE(asked, nullptr);
    EXPECT_EQ(ReadLoco(image, 8).value, before);
    user.expect(QStringLiteral("Funktionen geschrieben:\rLokdatensätze: 8\r\rLeer, nicht geändert:\r"
                               "Lokdatensätze: 4000"),
        QStringLiteral("Funktionen übertragen"));
    SpreadFunctions(from, QStringLiteral("4000,8,8"), [](const BoxText &) { return true; });
    const LocoRecord after = ReadLoco(image, 8).value;
    EXPECT_EQ(after.symbols, from.symbols);
    EXPECT_EQ(after.modes, from.modes);
    EXPECT_EQ(after.name, before.name);
    EXPECT_EQ(after.locoSymbol, before.locoSymbol);
    EXPECT_EQ(flashBytes(4000 * 64, 1), QByteArray(1, '\xFF'));
}

TEST_F(BackupTest, SpreadingKeepsWhatIsUnknownAndLeavesARecordThatIsNotUnderstood)
{
    SpiImage image{};
    const LocoRecord from = ReadLoco(image, 3).value;
    flash().setBytes(8 * 64 + 21, QByteArray(7, '\x42')); // bytes of the record that nobody interprets
    flash().setBytes(18 * 64, QByteArray(1, '\x60'));     // a name that begins with a character of no handheld
    const QByteArray strange = flashBytes(18 * 64, 64);
    user.expect(QStringLiteral("Funktionen geschrieben:\rLokdatensätze: 8\r\rUnsicher:\rLokdatensätze: 18"),
        QStringLiteral("Funktionen übertragen"));
    SpreadFunctions(from, QStringLiteral("8,18"), [](const BoxText &) { return true; });
    EXPECT_EQ(flashBytes(8 * 64 + 21, 7), QByteArray(7, '\x42'));
    EXPECT_EQ(flashBytes(18 * 64, 64), strange);
}

} // namespace hr::tests
