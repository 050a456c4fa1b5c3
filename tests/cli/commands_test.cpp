// The terminal program from its words to its exit status, its output and the flash, on the simulated bus.

#include "cli/program.h"
#include "handheld/flash_map.h"
#include "link/cadence.h"
#include "link/link_state.h"
#include "platform/files.h"
#include "program/run_control.h"
#include "roster/loco_csv.h"
#include "tests/support/virtual_world.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <random>

class Terminal : public VirtualWorld
{
protected:
    void SetUp() override
    {
        driveLink();
        flash().setBytes(LocoRecordAddress(3), QByteArray(64, '\x01'));
    }

    QString path(const QString &name) { return folder.filePath(name); }

    QString fileWith(const QString &name, const QByteArray &content)
    {
        EXPECT_TRUE(ReplaceFile(path(name), content));
        return path(name);
    }

    /// Runs a command line; `out` is what it printed.
    Exit run(const QString &words, const QStringList &files = {})
    {
        QStringList all = words.split(u' ', Qt::SkipEmptyParts) << files;
        all << QStringLiteral("--anschluss") << QStringLiteral("3") << QStringLiteral("--interface")
            << QStringLiteral("3");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        QCommandLineParser parser;
        Exit exit = Exit::Done;
        const auto wish = UnderstandWords(all, parser, exit);
        if (wish)
            exit = wish->command->run(wish->call);
        out = QByteArray::fromStdString(testing::internal::GetCapturedStdout());
        messages = QString::fromStdString(testing::internal::GetCapturedStderr());
        EXPECT_FALSE(HandreglerGefunden);
        return exit;
    }

    /// A list of locos as the program writes it, with every field at random.
    static QByteArray randomCsv(int count)
    {
        std::mt19937 dice(7);
        const QString characters = QStringLiteral("ABCÄÖÜXYZ019+-.:/=_?<>^|]");
        QString text = CsvHeading() + u'\n';
        for (int i = 0; i < count; ++i) {
            RosterLoco loco{1 + i * 3, {}};
            for (int c = 0; c <= i % 20; ++c)
                loco.record.name += characters.at(static_cast<int>(dice() % 25));
            for (size_t f = 0; f < FunctionCount; ++f) {
                loco.record.symbols.at(f) = static_cast<int>(dice() % 256);
                loco.record.modes.at(f) = static_cast<int>(dice() % 2);
            }
            loco.record.multiUni = i % 2;
            loco.record.locoSymbol = i % 64;
            text += CsvLine(loco) + u'\n';
        }
        return text.toUtf8();
    }

    QByteArray out;
    QString messages;
};

TEST_F(Terminal, ThreeHundredLocosComeBackAsTheyWereWritten)
{
    events.limitSeconds = 10'000;
    const QByteArray csv = randomCsv(300);
    for (const Cadence cadence : {Cadence::Events, Cadence::Ticks}) {
        ChooseCadence(cadence);
        flash().setBytes(0, QByteArray(LocoRecordSize * 10'000, '\xFF'));
        ASSERT_EQ(run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("a.csv"), csv)}), Exit::Done);
        ASSERT_EQ(run(QStringLiteral("loks --csv 1-1000")), Exit::Done);
        EXPECT_EQ(out, csv);
    }
    // Over the other formats too.
    const QStringList names{path(QStringLiteral("a.csv")), path(QStringLiteral("b.json")),
        path(QStringLiteral("c.dds")), path(QStringLiteral("d.csv"))};
    for (qsizetype i = 0; i + 1 < names.size(); ++i)
        ASSERT_EQ(run(QStringLiteral("umwandeln"), {names.at(i), names.at(i + 1)}), Exit::Done);
    EXPECT_EQ(*ReadWholeFile(names.constLast()), csv);
}

TEST_F(Terminal, AColumnThatIsMissingKeepsWhatTheRecordHas)
{
    const QByteArray before = flashBytes(LocoRecordAddress(3), 64);
    const QByteArray latin = "Symbol,Adresse,Name\r\n9,3,\"M\xFCller, \"\"X\"\"\"\r\n";
    user.expect(QStringLiteral("Diese Namen haben Zeichen, die der Handregler nicht hat:\r"
                               "Lok 3: \"Müller, \"X\"\" wird zu \"MÜLLER   X\"\rSollen sie so geschrieben werden?"),
        {}, QStringLiteral("Ja"));
    ASSERT_EQ(run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("a.csv"), latin)}), Exit::Done);
    const QByteArray after = flashBytes(LocoRecordAddress(3), 64);
    EXPECT_EQ(after.at(61), 9);
    EXPECT_EQ(after.mid(21, 40), before.mid(21, 40)) << "functions and bytes that nobody interprets";
    // An empty record has nothing to be completed: it needs a name.
    EXPECT_EQ(run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("b.csv"), "Adresse;Symbol\n5;1\n")}),
        Exit::Incomplete);
    EXPECT_EQ(flashBytes(LocoRecordAddress(5), 64), QByteArray(64, '\xFF'));
}

TEST_F(Terminal, AJsonListChangesOnlyWhatItNames)
{
    flash().setBytes(LocoRecordAddress(3) + 28, QByteArray(4, '\x55')); // every second function is momentary
    const QByteArray before = flashBytes(LocoRecordAddress(3), 64);
    user.acceptAnyBox();
    strike(&sim::Faults::lostAck, 2); // of the flash read, which is repeated
    const QString file = fileWith(QStringLiteral("a.json"), R"([{"adresse":3,"funktionen":[{"nr":1,"tast":true}]}])");
    ASSERT_EQ(run(QStringLiteral("schreiben"), {file}), Exit::Done);
    QByteArray wanted = before;
    wanted[28] = '\x57';
    wanted[31] = '\x01'; // bits behind f24 mean nothing and become 0
    EXPECT_EQ(flashBytes(LocoRecordAddress(3), 64), wanted);
}

TEST_F(Terminal, CtrlCWhileATableIsReadWritesNothing)
{
    const QString file = fileWith(QStringLiteral("a.csv"), "Adresse;Symbol\n1;7\n");
    const auto before = flash().state.memory;
    events.after(2'000'000, [] { TakeInterrupt(); });
    EXPECT_EQ(run(QStringLiteral("tabelle schreiben zuordnung"), {file}), Exit::Stopped);
    EXPECT_EQ(flash().state.memory, before);
}

TEST_F(Terminal, FaultyFilesAreRefusedWithPlaceAndReasonBeforeAnythingIsWritten)
{
    struct Row {
        QString name;
        QByteArray content;
        QString fault;
    };
    QByteArray many("Adresse;f1\n");
    for (int i = 1; i <= 10'000; ++i)
        many += QByteArray::number(i) + ";x\n";
    const Row rows[] = {
        {QStringLiteral("a.csv"), "Name\nX\n", QStringLiteral("Zeile 1, Spalte Adresse: diese Spalte fehlt")},
        {QStringLiteral("a.csv"), "", QStringLiteral("die Datei ist leer")},
        {QStringLiteral("a.csv"), "Adresse;Tast\n3;1 25\n", QStringLiteral("Zeile 2, Spalte Tast: \"25\"")},
        {QStringLiteral("a.csv"), "Adresse;Tast\n3;\n3;\n", QStringLiteral("schon in Zeile 2")},
        {QStringLiteral("a.csv"), "Adresse;Farbe\n3;1\n", QStringLiteral("FARBE: diese Spalte ist nicht bekannt")},
        {QStringLiteral("a.csv"), "Adresse;Name\n3;A;B\n", QStringLiteral("Zeile 2: mehr Zellen als Spalten")},
        {QStringLiteral("a.csv"), many, QStringLiteral("... und 9981 weitere Fehler")},
        {QStringLiteral("a.json"), "[{\"adresse\":3,\"symbol\":300}]",
            QStringLiteral("Lok Nr. 1 der Liste, \"symbol\"")},
        {QStringLiteral("a.json"), "[\n{", QStringLiteral("Zeile 2: das ist kein gültiges JSON")},
        {QStringLiteral("a.json"), "{}", QStringLiteral("keine Liste von Loks")},
        {QStringLiteral("a.dds"), "\x01\x00", QStringLiteral("Datensatz 1, Byteposition")}};
    const QByteArray before = flashBytes(0, 64 * 16);
    for (const Row &row : rows) {
        EXPECT_EQ(run(QStringLiteral("schreiben"), {fileWith(row.name, row.content)}), Exit::Usage);
        EXPECT_TRUE(messages.contains(row.fault)) << row.fault.toStdString() << "\n" << messages.toStdString();
    }
    EXPECT_EQ(flashBytes(0, 64 * 16), before);
    EXPECT_TRUE(layout().bus.log.empty()) << "the handheld was not even called";
}

TEST_F(Terminal, WrongCallsAreToldAndChangeNothing)
{
    for (const char *words :
        {"", "quatsch", "lesen", "lesen 0", "lesen 3-x", "lesen 3 4", "lesen 3 --csv", "symbol lesen lok 64 a.png",
            "symbol lesen funktion 1 rot a.png", "symbol lesen lok 1 a.gif", "tabelle lesen quatsch a.csv",
            "sichern a.dds", "sichern --loks-suchen 1,9 a.dds", "schreiben nix.csv"}) {
        EXPECT_EQ(run(QString::fromLatin1(words)), Exit::Usage) << words;
        EXPECT_FALSE(messages.isEmpty()) << words;
    }
    EXPECT_TRUE(layout().bus.log.empty());
    EXPECT_EQ(run(QStringLiteral("lesen --help")), Exit::Done);
    EXPECT_TRUE(out.contains("LISTE"));
}

TEST_F(Terminal, ExitStatusSaysHowItEnded)
{
    EXPECT_EQ(run(QStringLiteral("info --json")), Exit::Done);
    EXPECT_EQ(QJsonDocument::fromJson(out).object().value(QStringLiteral("version")), QStringLiteral("1.2"));
    user.expect(
        QStringLiteral("Sollen diese Lokdatensätze im Handregler gelöscht werden: 3?"), {}, QStringLiteral("Nein"));
    EXPECT_EQ(run(QStringLiteral("loeschen 3")), Exit::Stopped);
    EXPECT_EQ(flashBytes(LocoRecordAddress(3), 1), "\x01");
    user.acceptAnyBox();
    strike(&sim::Faults::lostAck, 2); // of the flash read
    EXPECT_EQ(run(QStringLiteral("lesen 3")), Exit::Incomplete);
    EXPECT_TRUE(messages.contains(QStringLiteral("Unsicher gelesen")));
    EXPECT_TRUE(out.isEmpty()) << "what is printed is taken for true";
    layout().faults.set({});
    handheld().settings.present = false;
    EXPECT_EQ(run(QStringLiteral("lesen 3")), Exit::NoHandheld);
    handheld().settings.present = true;
    events.after(9'000'000, [] { TakeInterrupt(); });
    EXPECT_EQ(run(QStringLiteral("lesen 1-99 --json")), Exit::Stopped);
    EXPECT_LT(QJsonDocument::fromJson(out).array().size(), 20);
    EXPECT_TRUE(messages.contains(QStringLiteral("Nicht gelesen")));
}

TEST_F(Terminal, PicturesAndTablesGoOutAndInAgainWithoutAChangedByte)
{
    std::mt19937 dice(1);
    for (const int address :
        {LokSymbolAddress + 512, FktSymbolAddress + 2 * 64, StartImageAddress, MagZuordAddress}) {
        QByteArray bytes(512, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(dice() & 0x7C); // the last bits of a row lie outside of 14 pixels
        flash().setBytes(address, bytes);
    }
    for (const auto &[address, width, height] : {std::tuple(LokSymbolAddress + 512, 23, 15),
             {FktSymbolAddress + 2 * 64 + 32, 6, 13}, {StartImageAddress, 39, 25}})
        flash().setBytes(address, QByteArray(1, static_cast<char>(width)) + static_cast<char>(height));
    flash().setBytes(0x3F0808, QByteArray(256, '\xFF')); // an accessory list that was never filled
    const auto before = flash().state.memory;
    struct Row {
        const char *words;
        QString file;
        int address;
        int bytes;
    };
    const Row rows[] = {{"symbol %1 lok 1", path(QStringLiteral("a.png")), LokSymbolAddress + 512, 98},
        {"symbol %1 funktion 2 aus", path(QStringLiteral("b.bmp")), FktSymbolAddress + 2 * 64 + 32, 30},
        {"startbild %1", path(QStringLiteral("c.png")), StartImageAddress, 262},
        {"tabelle %1 zuordnung", path(QStringLiteral("d.csv")), MagZuordAddress + 1, 2048},
        {"tabelle %1 magliste", path(QStringLiteral("e.csv")), 0x3F0808, 256},
        {"tabelle %1 fahrstrassen", path(QStringLiteral("f.csv")), 0x3F0204, 320}};
    for (const Row &row : rows) {
        const QString words = QString::fromLatin1(row.words);
        ASSERT_EQ(run(words.arg(QStringLiteral("lesen")), {row.file}), Exit::Done) << row.words;
        ASSERT_EQ(run(words.arg(QStringLiteral("schreiben")), {row.file}), Exit::Done) << row.words;
        for (int i = 0; i < row.bytes; ++i) {
            const auto at = static_cast<size_t>(row.address + i);
            ASSERT_EQ(flash().state.memory.at(at), before.at(at)) << row.words << " byte " << i;
        }
    }
    EXPECT_EQ(run(QStringLiteral("symbol schreiben lok 1"), {path(QStringLiteral("b.bmp"))}), Exit::Usage);
    EXPECT_TRUE(messages.contains(QStringLiteral("14 x 14 Punkte, gebraucht werden 48 x 16")));
    EXPECT_EQ(run(QStringLiteral("tabelle schreiben fahrstrassen"),
                  {fileWith(QStringLiteral("g.csv"), "Fahrstraße;Rückmelder\n80;4096\n1;\n")}),
        Exit::Done);
    EXPECT_EQ(flashBytes(0x3F0204 + 79 * 4, 2), QByteArray("\x10\x00", 2));
}

TEST_F(Terminal, ABackupGoesBackAndTheSettingsOfTheWindowsStay)
{
    const QString file = path(QStringLiteral("a.dds"));
    ASSERT_EQ(run(QStringLiteral("sichern --loks 3 --loks-suchen 1-9 --magsymbole 0-2 --fahrstrassen"), {file}),
        Exit::Done);
    const QByteArray before = flashBytes(LocoRecordAddress(3), 32);
    user.ignoreTexts = true;
    user.expect({}, {}, QStringLiteral("Ja"));
    ASSERT_EQ(run(QStringLiteral("loeschen 3")), Exit::Done);
    user.expect({}, {}, QStringLiteral("Ja"));
    ASSERT_EQ(run(QStringLiteral("zurueck"), {file}), Exit::Done);
    EXPECT_EQ(flashBytes(LocoRecordAddress(3), 21), before.left(21));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("konf/ComPort.inf"))));
}
