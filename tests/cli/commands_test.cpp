// The terminal program from its words to its exit status, its output and the flash, on the simulated bus.

#include "cli/program.h"
#include "cli/terminal_ask.h"
#include "handheld/flash_map.h"
#include "jobs/undo_snapshot.h"
#include "link/cadence.h"
#include "link/link_state.h"
#include "platform/disk.h"
#include "platform/files.h"
#include "platform/qt/console.h"
#include "program/run_control.h"
#include "roster/loco_csv.h"
#include "sim/demo_content.h"
#include "tests/support/virtual_world.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTemporaryDir>

#include <random>

namespace hr::tests
{

/// Somebody at a terminal who types these lines, and then ends the input.
class TypingUser : public Console
{
public:
    [[nodiscard]] bool errorIsTerminal() const override { return false; }
    [[nodiscard]] bool canAsk() const override { return present; }
    void readLine(std::function<void(const Line &)> take) override
    {
        const Line line = lines.isEmpty() ? Line() : Line(lines.takeFirst());
        take(line);
    }
    void stopReading() override { }

    bool present = false;
    QStringList lines;
};

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
        if (wish) {
            TerminalAsk terminal(typing, wish->manner);
            InstallAsk(atTerminal ? static_cast<Ask *>(&terminal) : &user);
            exit = wish->command->run(wish->call);
            InstallAsk(&user);
        }
        out = QByteArray::fromStdString(testing::internal::GetCapturedStdout());
        messages = QString::fromStdString(testing::internal::GetCapturedStderr());
        EXPECT_FALSE(TheLink().HandreglerGefunden);
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
    TypingUser typing;
    bool atTerminal = false; // otherwise questions are the scripted user's
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
        QStringLiteral("Namen anpassen?"), QStringLiteral("Ja"));
    ASSERT_EQ(run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("a.csv"), latin)}), Exit::Done);
    const QByteArray after = flashBytes(LocoRecordAddress(3), 64);
    EXPECT_EQ(after.at(61), 9);
    EXPECT_EQ(after.mid(21, 40), before.mid(21, 40)) << "functions and bytes that nobody interprets";
    // An empty record has nothing to be completed: it needs a name.
    EXPECT_EQ(
        run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("b.csv"), "Adresse;f1\n5;1\n")}), Exit::Incomplete);
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
    // The column names all of them; an empty cell means none.
    for (const auto &[cell, bits] :
        {std::pair("2 24", QByteArray("\x04\x00\x00\x01", 4)), {"", QByteArray(4, '\0')}}) {
        const QByteArray list = QByteArray("Adresse;Tast\n3;") + cell + '\n';
        ASSERT_EQ(run(QStringLiteral("schreiben"), {fileWith(QStringLiteral("t.csv"), list)}), Exit::Done);
        EXPECT_EQ(flashBytes(LocoRecordAddress(3) + 28, 4), bits);
    }
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
    EXPECT_LT(QJsonDocument::fromJson(out).array().size(), 50);
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
    user.ignoreTexts = true;
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
        if (flashBytes(row.address + 8, 1) != "\xFF") { // what is empty in the handheld is not in the file
            flash().setBytes(row.address + 8, QByteArray(2, '\x14'));
            user.expect({}, {}, QStringLiteral("Ja"));
        }
        const QString write = words.arg(QStringLiteral("schreiben --auch-eingebaute"));
        ASSERT_EQ(run(row.words[1] == 'y' ? write : words.arg(QStringLiteral("schreiben")), {row.file}), Exit::Done)
            << row.words << messages.toStdString();
        for (int i = 0; i < row.bytes; ++i) {
            const auto at = static_cast<size_t>(row.address + i);
            ASSERT_EQ(flash().state.memory.at(at), before.at(at)) << row.words << " byte " << i;
        }
    }
    EXPECT_EQ(run(QStringLiteral("symbol schreiben lok 1"), {path(QStringLiteral("b.bmp"))}), Exit::Usage);
    EXPECT_TRUE(messages.contains(QStringLiteral("14 x 14 Punkte, gebraucht werden 48 x 16")));
    user.expect({}, {}, QStringLiteral("Ja"));
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

/// What a user calls at a terminal, and what it does to these locos: 3, 4 (one page), 8, 9, 20 (empty).
class Calls : public Terminal
{
protected:
    struct Row {
        const char *what;
        QString words;
        QString answers; // typed: "j,n"; "-" when nobody can answer
        Exit exit;
        QString says;  // in the output or the messages, each behind a |
        QString after; // names of the locos
        int programs;  // pages
        std::function<void()> happens = [] {};
    };
    static constexpr std::array Locos{3, 4, 8, 9, 20};

    void freshWorld()
    {
        flash().setBytes(0, QByteArray(LocoRecordSize * 32, '\xFF'));
        for (const int n : {3, 4, 8, 9})
            setLoco(n, QStringLiteral("LOK %1").arg(n));
        QDir(path(QStringLiteral("konf/Sicherungen"))).removeRecursively();
        QDir(folder.path()).removeRecursively();
        QDir().mkpath(path(QStringLiteral("konf")));
        fileWith(QStringLiteral("a.csv"), "Adresse;Name\n3;ANDERS\n8;LOK 8\n20;NEU\n");
        fileWith(QStringLiteral("b.csv"), "Adresse;Name\n4;VIER\n");
        fileWith(QStringLiteral("z.csv"), "Adresse;Symbol\n1;7\n");
    }

    void setLoco(int n, const QString &name)
    {
        LocoBytes beneath{};
        beneath.fill(EmptyByte);
        const LocoBytes bytes = EncodeLoco({FitLocoName(name), {}, {}, 0, 5}, beneath);
        flash().setBytes(
            LocoRecordAddress(n), QByteArray(reinterpret_cast<const char *>(bytes.data()), bytes.size()));
    }

    QString names()
    {
        QStringList list;
        for (const int n : Locos) {
            LocoBytes bytes{};
            const QByteArray stored = flashBytes(LocoRecordAddress(n), LocoRecordSize);
            std::copy(stored.begin(), stored.end(), bytes.begin());
            const LocoRecord loco = DecodeLoco(bytes);
            list += IsEmptyName(loco.name) ? QStringLiteral("-") : loco.name.trimmed();
        }
        return list.join(u',');
    }

    /// Does it when so many messages more of the program are on the bus.
    void afterMessages(int count, const std::function<void()> &what)
    {
        layout().bus.onEnd = [left = count, what](const sim::BusMessage &message) mutable {
            if (message.sender == sim::Sender::Pc && --left == 0)
                what();
        };
    }

    void call(const Row &row)
    {
        SCOPED_TRACE(row.what);
        layout().faults.set({});
        handheld().restorePower();
        ResetRunControl();
        typing.present = row.answers != u"-";
        typing.lines = row.answers.split(u',', Qt::SkipEmptyParts);
        for (QString &line : typing.lines)
            line = line.trimmed(); // a blank is the key Enter alone
        atTerminal = true;
        const int programs = executed(0x83);
        row.happens();
        QStringList words = row.words.split(u' ');
        for (QString &word : words)
            word = word.contains(u'.') ? path(word) : word;
        EXPECT_EQ(run({}, words), row.exit);
        const QString said = QString::fromUtf8(out) + messages;
        for (const QString &text : row.says.split(u'|', Qt::SkipEmptyParts))
            EXPECT_TRUE(said.contains(text)) << text.toStdString() << "\nnot in\n" << said.toStdString();
        EXPECT_EQ(names().toStdString(), row.after.toStdString()) << said.toStdString();
        EXPECT_EQ(executed(0x83) - programs, row.programs);
        EXPECT_TRUE(row.answers == u"-" || typing.lines.isEmpty()) << "not asked: " << said.toStdString();
        events.run(30); // what was to happen later has happened
    }

    void scene(const std::vector<Row> &rows)
    {
        freshWorld();
        for (const Row &row : rows)
            call(row);
    }
};

TEST_F(Calls, SayAndDoWhatTheOptionsSay)
{
    const auto before = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto after = QStringLiteral("ANDERS,LOK 4,LOK 8,LOK 9,NEU");
    const auto none = QStringLiteral("-");
    const auto wrote =
        QStringLiteral("In den Handregler geschrieben:\nLokdatensätze: 3,20|Unverändert:\nLokdatensätze: 8");
    const Row rows[] = {
        {"write", QStringLiteral("schreiben a.csv"), none, Exit::Done, wrote + u"|zurückgenommen werden: ", after, 2},
        {"an older call", QStringLiteral("schreiben --nur-aenderungen a.csv"), none, Exit::Done, wrote, after, 2},
        {"dry run", QStringLiteral("schreiben --probe a.csv"), none, Exit::Done,
            QStringLiteral("Lok 3: geändert\n  Name: LOK 3 -> ANDERS|Lok 8: unverändert|Lok 20: neu|"
                           "Anders: 2 von 3, 2 Speicherseiten"),
            before, 0},
        {"all", QStringLiteral("schreiben --alles-schreiben a.csv"), none, Exit::Done,
            QStringLiteral("Lokdatensätze: 3,8,20"), after, 3},
        {"dry run of all", QStringLiteral("schreiben --alles-schreiben --probe a.csv"), none, Exit::Done,
            QStringLiteral("Zu schreiben: 3 von 3, 3 Speicherseiten"), before, 0},
        {"some", QStringLiteral("schreiben --nur 3,8 a.csv"), none, Exit::Done, QStringLiteral("Lokdatensätze: 3\n"),
            QStringLiteral("ANDERS,LOK 4,LOK 8,LOK 9,-"), 1},
        {"one that is not in the file", QStringLiteral("schreiben --nur 3,5 a.csv"), none, Exit::Usage,
            QStringLiteral("Die Lok 5 steht nicht in der Datei."), before, 0},
        {"without proof", QStringLiteral("schreiben --nicht-pruefen a.csv"), none, Exit::Done, wrote, after, 2},
        {"nothing to go on with", QStringLiteral("schreiben --fortsetzen a.csv"), none, Exit::Usage,
            QStringLiteral("Es gibt nichts fortzusetzen."), before, 0},
        {"delete, no", QStringLiteral("loeschen 3,9"), QStringLiteral("n"), Exit::Stopped,
            QStringLiteral("Sollen diese Lokdatensätze im Handregler gelöscht werden: 3,9? [j/N]"), before, 0},
        {"delete, Enter", QStringLiteral("loeschen 3,9"), QStringLiteral(" "), Exit::Stopped, {}, before, 0},
        {"delete, input ended", QStringLiteral("loeschen 3,9"), {}, Exit::Stopped, {}, before, 0},
        {"delete, nobody there", QStringLiteral("loeschen 3,9"), none, Exit::Stopped,
            QStringLiteral("Nein: Hier kann niemand antworten."), before, 0},
        {"delete", QStringLiteral("loeschen 3,9,20"), QStringLiteral("j"), Exit::Done,
            QStringLiteral("Gelöscht:\nLokdatensätze: 3,9|Unverändert:\nLokdatensätze: 20"),
            QStringLiteral("-,LOK 4,LOK 8,-,-"), 2},
        {"delete by a script", QStringLiteral("loeschen --ja 3,9"), none, Exit::Done, QStringLiteral("Ja (--ja)"),
            QStringLiteral("-,LOK 4,LOK 8,-,-"), 2},
        {"dry run of a delete", QStringLiteral("loeschen --probe 3,9"), none, Exit::Done,
            QStringLiteral("Lok 3: wird gelöscht|Anders: 2 von 2, 2 Speicherseiten"), before, 0},
        {"table, no", QStringLiteral("tabelle schreiben zuordnung z.csv"), QStringLiteral("n"), Exit::Stopped,
            QStringLiteral("Mag.Art. Symbolzuordnung|Soll geschrieben werden? [j/N]"), before, 0},
        {"table, dry run", QStringLiteral("tabelle schreiben zuordnung --probe z.csv"), none, Exit::Done,
            QStringLiteral("Mag.Art. Symbolzuordnung: geändert"), before, 0},
        {"table", QStringLiteral("tabelle schreiben zuordnung z.csv"), QStringLiteral("j"), Exit::Done,
            QStringLiteral("In den Handregler geschrieben:\nMag.Art. Symbolzuordnung"), before, 5},
        {"an option of writing", QStringLiteral("tabelle lesen zuordnung --probe z.csv"), none, Exit::Usage,
            QStringLiteral("--probe gibt es nur beim Schreiben."), before, 0}};
    for (const Row &row : rows)
        scene({row});
    scene({{"without saving", QStringLiteral("schreiben --ohne-sicherung a.csv"), none, Exit::Done, wrote, after, 2},
        {"nothing to take back", QStringLiteral("zuruecknehmen"), none, Exit::Usage,
            QStringLiteral("Es gibt nichts zurückzunehmen."), after, 0}});
    scene({{"a backup of one", QStringLiteral("sichern --loks 3 s.dds"), none, Exit::Done, {}, before, 0},
        {"not comparable", QStringLiteral("vergleichen s.dds"), none, Exit::Incomplete,
            QStringLiteral("Lok 3: nicht sicher gelesen"), before, 0,
            [this] { afterMessages(3, [this] { handheld().settings.present = false; }); }}});
    handheld().settings.present = true;
    const auto search = QStringLiteral("sichern --loks-suchen 1-30 x.dds");
    const auto stop = [this] { events.after(6'000'000, [] { TakeInterrupt(); }); };
    scene({{"broken off", search, none, Exit::Stopped, QStringLiteral("Die Datensicherung wurde angehalten."), before,
               0, stop},
        {"a script does not go on", search + u" --ja", none, Exit::Stopped,
            QStringLiteral("Das tut nur --fortsetzen.|Die Datensicherung wurde angehalten."), before, 0, stop},
        {"go on, Enter", search, QStringLiteral(" "), Exit::Done,
            QStringLiteral("Soll sie fortgesetzt werden?|[J/n]"), before, 0}});
    scene({{"broken off", search, none, Exit::Stopped, {}, before, 0, stop},
        {"--ja does not give it up", QStringLiteral("sichern --ja --loks 3 x.dds"), none, Exit::Usage,
            QStringLiteral("zu einem anderen Auftrag|beantwortet --ja nicht"), before, 0},
        {"nor does it go on", QStringLiteral("sichern --ja --loks-suchen 1-30 x.dds"), none, Exit::Done,
            QStringLiteral("Das tut nur --fortsetzen."), before, 0},
        {"nothing to go on with", QStringLiteral("sichern --fortsetzen --loks 3 x.dds"), none, Exit::Usage,
            QStringLiteral("Es gibt nichts fortzusetzen."), before, 0}});
    scene({{"make a backup", QStringLiteral("sichern --loks 3,8 s.dds"), none, Exit::Done, {}, before, 0},
        {"compare equal", QStringLiteral("vergleichen s.dds"), none, Exit::Done,
            QStringLiteral("Kein Unterschied: 2 Datensätze."), before, 0},
        {"change", QStringLiteral("schreiben a.csv"), none, Exit::Done, wrote, after, 2},
        {"compare different", QStringLiteral("vergleichen s.dds"), none, Exit::Differs,
            QStringLiteral("Lok 3: geändert"), after, 0},
        {"restore, no", QStringLiteral("zurueck s.dds"), QStringLiteral("n"), Exit::Stopped,
            QStringLiteral("Soll die Datensicherung in den Handregler geschrieben werden? [j/N]"), after, 0},
        {"restore", QStringLiteral("zurueck s.dds"), QStringLiteral("j"), Exit::Done,
            QStringLiteral("Lokdatensätze: 3|Unverändert:\nLokdatensätze: 8"),
            QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,NEU"), 1}});
}

TEST_F(Calls, ChangesAreTakenBackOneAfterTheOther)
{
    const auto before = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto first = QStringLiteral("ANDERS,LOK 4,LOK 8,LOK 9,NEU");
    const auto both = QStringLiteral("ANDERS,VIER,LOK 8,LOK 9,NEU");
    const auto take = QStringLiteral("zuruecknehmen");
    const auto no = QStringLiteral("n");
    const auto yes = QStringLiteral("j");
    scene({{"one file", QStringLiteral("schreiben a.csv"), QStringLiteral("-"), Exit::Done,
               QStringLiteral("-vorher.bytes\n\"handregler zuruecknehmen\""), first, 2},
        {"another one", QStringLiteral("schreiben b.csv"), QStringLiteral("-"), Exit::Done, {}, both, 1},
        {"list", QStringLiteral("zuruecknehmen --liste"), QStringLiteral("-"), Exit::Done,
            QStringLiteral("     2  23.11.2026 10:0|1 Lokdatensatz: 4\n     1  23.11.|2 Lokdatensätze: 3, 20"), both,
            0},
        {"no such number", QStringLiteral("zuruecknehmen 7"), QStringLiteral("-"), Exit::Usage,
            QStringLiteral("mit der Nummer 7"), both, 0},
        {"another handheld", take, QStringLiteral("-"), Exit::Usage,
            QStringLiteral("im Handregler 51201 1.2 14.3.8 gemacht; verbunden ist jetzt 51202 1.2 14.3.8."), both, 0,
            [this] { handheld().settings.type = "51202"; }},
        {"an earlier one", QStringLiteral("zuruecknehmen 1"), no, Exit::Stopped, QStringLiteral("3, 20."), both, 0,
            [this] { handheld().settings.type = "51201"; }},
        {"no", take, no, Exit::Stopped, QStringLiteral("schreiben |Soll die Änderung zurückgenommen werden?"), both,
            0},
        {"only shown", QStringLiteral("zuruecknehmen --probe"), QStringLiteral("-"), Exit::Done,
            QStringLiteral("Lok 4: geändert|Anders: 1 von 1"), both, 0},
        {"the second one", take, yes, Exit::Done, QStringLiteral("Zurückgenommen:\nLokdatensätze: 4"), first, 1},
        {"edited since", take, yes, Exit::Incomplete,
            QStringLiteral("Seither geändert und so gelassen:\nLokdatensätze: 3|Zurückgenommen:\nLokdatensätze: 20"),
            QStringLiteral("HEUTE,LOK 4,LOK 8,LOK 9,-"), 1, [this] { setLoco(3, QStringLiteral("HEUTE")); }},
        {"no more", take, QStringLiteral("-"), Exit::Usage, QStringLiteral("Es gibt nichts zurückzunehmen."),
            QStringLiteral("HEUTE,LOK 4,LOK 8,LOK 9,-"), 0}});
}

TEST_F(Calls, AfterABreakTheNextCallMakesThePageGoodAndGoesOnOnlyWhenAsked)
{
    const auto before = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto first = QStringLiteral("ANDERS,LOK 4,LOK 8,LOK 9,-");
    const auto after = QStringLiteral("ANDERS,LOK 4,LOK 8,LOK 9,NEU");
    const auto write = QStringLiteral("schreiben a.csv");
    const auto none = QStringLiteral("-");
    const Row stop{"stop", write, none, Exit::Stopped,
        QStringLiteral("Angehalten.|Nicht geschrieben:\nLokdatensätze: 20|mit --fortsetzen"), first, 1,
        [this] { afterNextProgram(TakeInterrupt); }};
    const auto resume = QStringLiteral("Dieser Auftrag wurde abgebrochen; erledigt: 1 Datensatz.");
    const auto already = QStringLiteral("Schon geschrieben:\nLokdatensätze: 3");
    scene({stop, {"go on", write, QStringLiteral("j"), Exit::Done, resume + u'|' + already, after, 1}});
    scene({stop, {"go on, Enter", write, QStringLiteral(" "), Exit::Done, resume, after, 1}});
    scene({stop,
        {"by an option", QStringLiteral("schreiben --fortsetzen a.csv"), none, Exit::Done, already, after, 1}});
    const auto all = QStringLiteral("schreiben --alles-schreiben a.csv");
    scene({stop, {"go on with the rest of all", all, QStringLiteral("j"), Exit::Done, resume, after, 2}});
    scene({stop, {"no: all anew", all, QStringLiteral("n"), Exit::Done, resume, after, 3}});
    scene({stop,
        {"--ja does not go on", QStringLiteral("schreiben --ja --alles-schreiben a.csv"), none, Exit::Done,
            QStringLiteral("Das tut nur --fortsetzen."), after, 3}});
    scene({stop, {"taken back", QStringLiteral("zuruecknehmen"), QStringLiteral("j"), Exit::Done, {}, before, 1},
        {"not gone on with", QStringLiteral("schreiben --fortsetzen a.csv"), none, Exit::Done,
            QStringLiteral("inzwischen zurückgenommen. Es wird von vorn begonnen."), after, 2}});
    const auto otherFile = [this] { fileWith(QStringLiteral("a.csv"), "Adresse;Name\n3;DREI\n"); };
    const auto unfit = QStringLiteral("passt nicht. Er gehört zu einem anderen Auftrag");
    scene({stop,
        {"does not fit", QStringLiteral("schreiben --fortsetzen a.csv"), none, Exit::Usage, unfit, first, 0,
            otherFile},
        {"--ja does not give it up", QStringLiteral("schreiben --ja a.csv"), none, Exit::Usage,
            unfit + u"|beantwortet --ja nicht", first, 0},
        {"given up", write, QStringLiteral("j"), Exit::Done, unfit, QStringLiteral("DREI,LOK 4,LOK 8,LOK 9,-"), 1}});
    // A folder of loco files: what counts is what stands in them.
    const auto locoFile = [this](const QByteArray &id) {
        EXPECT_TRUE(MakeFolder(path(QStringLiteral("loks.d"))));
        fileWith(QStringLiteral("loks.d/a.xml"),
            "<r><locomotive id=\"" + id
                + R"(" dccAddress="3"><functionlabels>)"
                  R"(<functionlabel num="1">Elefant</functionlabel></functionlabels></locomotive></r>)");
        fileWith(QStringLiteral("loks.d/b.xml"), R"(<r><locomotive id="Neu" dccAddress="20"/></r>)");
    };
    scene({{"stop in a folder", QStringLiteral("schreiben loks.d/"), none, Exit::Stopped,
               QStringLiteral("f1: \"Elefant\" ist nicht in|Angehalten."), first, 1,
               [&] {
                   locoFile("Anders");
                   afterNextProgram(TakeInterrupt);
               }},
        {"another file in it", QStringLiteral("schreiben --fortsetzen loks.d"), none, Exit::Usage, unfit, first, 0,
            [&] { locoFile("Drei"); }}});
    // A page that was destroyed: whatever comes next.
    const Row cut{"power cut", write, none, Exit::Incomplete,
        QStringLiteral("Nicht bewiesen ist, was jetzt hier steht: Lokdatensätze: 1-7.|aufbewahrt"),
        QStringLiteral("ANDERS,-,LOK 8,LOK 9,-"), 1, [this] { strike(&sim::Faults::powerCut, 1); }};
    const auto mend =
        QStringLiteral("Zerstört sind:\nLokdatensätze: 4.\nSollen sie zuerst wiederhergestellt werden? [J/n]");
    const auto mended = QStringLiteral("Wiederhergestellt:\nLokdatensätze: 4");
    scene({cut, {"the same", QStringLiteral("schreiben --fortsetzen a.csv"), none, Exit::Done, mended, after, 2}});
    scene({cut, {"the same, asked", write, QStringLiteral("j,j"), Exit::Done, mend + u'|' + mended, after, 2}});
    scene({cut,
        {"no", write, QStringLiteral("n,n"), Exit::Stopped, mend + u"|Soll vergessen werden",
            QStringLiteral("ANDERS,-,LOK 8,LOK 9,-"), 0},
        {"a delete", QStringLiteral("loeschen 9"), QStringLiteral("j,j"), Exit::Done,
            mend + u'|' + mended + u"|Gelöscht:\nLokdatensätze: 9", QStringLiteral("ANDERS,LOK 4,LOK 8,-,-"), 2}});
    scene({cut,
        {"nobody there", QStringLiteral("schreiben b.csv"), none, Exit::Stopped, mend.left(40),
            QStringLiteral("ANDERS,-,LOK 8,LOK 9,-"), 0},
        {"a script", QStringLiteral("schreiben --ja b.csv"), none, Exit::Done, mended,
            QStringLiteral("ANDERS,VIER,LOK 8,LOK 9,-"), 2}});
    scene({{"power cut in a delete", QStringLiteral("loeschen --ja 3"), none, Exit::Incomplete,
               QStringLiteral("Derselbe Befehl"), QStringLiteral("-,-,LOK 8,LOK 9,-"), 1,
               [this] { strike(&sim::Faults::powerCut, 1); }},
        {"once more", QStringLiteral("loeschen --ja 3"), none, Exit::Done, mended,
            QStringLiteral("-,LOK 4,LOK 8,LOK 9,-"), 1}});
    scene({cut,
        {"shown only", QStringLiteral("loeschen --probe 9"), none, Exit::Done, QStringLiteral("nicht fertig"),
            QStringLiteral("ANDERS,-,LOK 8,LOK 9,-"), 0}});
}

TEST_F(Calls, SymbolsAndTheStartImageAreAskedAboutAndTakenBack)
{
    freshWorld();
    const auto names = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto none = QStringLiteral("-");
    flash().setBytes(FktSymbolAddress + 200 * 64, QByteArray("\x06\x0D", 2) + QByteArray(28, '\x54'));
    flash().setBytes(StartImageAddress, QByteArray("\x27\x19", 2) + QByteArray(260, '\x55'));
    const auto before = flash().state.memory;
    for (const Row &row :
        {Row{"a picture", QStringLiteral("symbol lesen funktion 200 ein s.png"), none, Exit::Done, {}, names, 0},
            {"the start image", QStringLiteral("startbild lesen i.png"), none, Exit::Done, {}, names, 0},
            {"unchanged", QStringLiteral("symbol schreiben funktion 200 ein s.png"), none, Exit::Done,
                QStringLiteral("Unverändert:\nFunktionssymbole ON: 200"), names, 0},
            {"built in", QStringLiteral("symbol schreiben funktion 163 aus s.png"), none, Exit::Usage,
                QStringLiteral("Das Symbol 163 ist eingebaut (0 bis 163)."), names, 0},
            {"built in", QStringLiteral("symbol schreiben magnet 27 rot s.png"), none, Exit::Usage,
                QStringLiteral("Das Symbol 27 ist eingebaut (0 bis 27)."), names, 0},
            {"wanted all the same", QStringLiteral("symbol schreiben magnet 27 rot --auch-eingebaute s.png"),
                QStringLiteral("j"), Exit::Done, QStringLiteral("Mag.Art. Symbole Rot: 27"), names, 1},
            {"another place, no", QStringLiteral("symbol schreiben funktion 201 ein s.png"), QStringLiteral("n"),
                Exit::Stopped, QStringLiteral("Funktionssymbol 201 ON wird überschrieben."), names, 0},
            {"another place", QStringLiteral("symbol schreiben funktion 201 ein s.png"), QStringLiteral("j"),
                Exit::Done, QStringLiteral("Funktionssymbole ON: 201"), names, 1},
            {"the start image back in", QStringLiteral("startbild schreiben i.png"), QStringLiteral("j"), Exit::Done,
                QStringLiteral("In den Handregler geschrieben:\nStartbild"), names, 1,
                [this] { flash().setBytes(StartImageAddress + 100, QByteArray(99, '\x11')); }},
            {"not read for sure", QStringLiteral("symbol lesen funktion 200 ein t.png"), none, Exit::Incomplete,
                QStringLiteral("Das Bild wurde nicht sicher gelesen; die Datei wird nicht geschrieben."), names, 0,
                [this] { strike(&sim::Faults::missedRequest, 4); }},
            {"nobody answers any more", QStringLiteral("symbol schreiben funktion 202 ein s.png"), none,
                Exit::Incomplete,
                QStringLiteral("weil ihre Speicherseite nicht sicher gelesen wurde:\nFunktionssymbole ON: 202"),
                names, 0, [this] { afterMessages(3, [this] { handheld().settings.present = false; }); }}})
        call(row);
    handheld().settings.present = true;
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("t.png"))));
    EXPECT_EQ(flashBytes(FktSymbolAddress + 201 * 64, 30), flashBytes(FktSymbolAddress + 200 * 64, 30));
    for (int i = 0; i < 3; ++i)
        call({"taken back", QStringLiteral("zuruecknehmen"), QStringLiteral("j"), Exit::Done, {}, names, 1});
    EXPECT_EQ(flashBytes(StartImageAddress + 100, 99), QByteArray(99, '\x11'));
    flash().setBytes(StartImageAddress + 100, QByteArray(99, '\x55'));
    EXPECT_EQ(flash().state.memory, before);
}

TEST_F(Calls, AllSymbolsGoIntoAFolderAndOnlyWhatDiffersComesBack)
{
    freshWorld();
    const auto names = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto none = QStringLiteral("-");
    const auto write = QStringLiteral("symbol schreiben alle bilder.d");
    for (const int number : {12, 200})
        flash().setBytes(FktSymbolAddress + number * 64, QByteArray("\x06\x0D", 2) + QByteArray(28, '\x54'));
    const auto before = flash().state.memory;
    const auto file = QStringLiteral("bilder.d/LokfktSymbole/200 Symbol %ON%.bmp");
    call({"a word too many", QStringLiteral("symbol lesen alle 3 bilder.d"), none, Exit::Usage,
        QStringLiteral("Bei alle steht nur ORDNER."), names, 0});
    call({"stopped", QStringLiteral("symbol lesen alle bilder.d"), none, Exit::Stopped,
        QStringLiteral("Es wurde keine Datei geschrieben."), names, 0, [this] { afterMessages(90, TakeInterrupt); }});
    EXPECT_FALSE(QFile::exists(path(file)));
    call({"read", QStringLiteral("symbol lesen alle bilder.d"), none, Exit::Done,
        QStringLiteral("Funktionssymbole ON: 12,200\n|Leer, ohne Datei:"), names, 0});
    EXPECT_TRUE(QFile::exists(path(file)));
    call({"the same", write + u" --auch-eingebaute", none, Exit::Done, QStringLiteral("Unverändert:"), names, 0});
    call({"what differs", write, QStringLiteral("j"), Exit::Done,
        QStringLiteral("Funktionssymbole ON: 200|Übergangen: 1 Bilder"), names, 1, [this] {
            for (const int number : {12, 200})
                flash().setBytes(FktSymbolAddress + number * 64 + 4, QByteArray(9, '\x11'));
        }});
    EXPECT_EQ(flashBytes(FktSymbolAddress + 12 * 64 + 4, 9), QByteArray(9, '\x11')) << "a built-in one stays";
    flash().setBytes(FktSymbolAddress + 12 * 64 + 4, QByteArray(9, '\x54'));
    EXPECT_EQ(flash().state.memory, before);
    const auto doubled = QStringLiteral("bilder.d/LokfktSymbole/200 anders %on%.BMP");
    call({"two files for one symbol", write, none, Exit::Usage,
        QStringLiteral("Funktionssymbol 200 ON steht in zwei Dateien|Kein Symbol, übergangen:"), names, 0, [&] {
            EXPECT_TRUE(QFile::copy(path(file), path(doubled)));
            fileWith(QStringLiteral("bilder.d/LokfktSymbole/201 ohne Halbe.bmp"), "x");
        }});
    EXPECT_TRUE(QFile::remove(path(doubled)));
    call({"a damaged file", write, none, Exit::Usage, QStringLiteral("200 Symbol %ON%.bmp: "), names, 0,
        [&] { fileWith(file, "BMnix"); }});
}

TEST_F(Calls, TheBusIsHeardAndNothingIsSent)
{
    freshWorld();
    const auto names = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto none = QStringLiteral("-");
    const auto traffic = [this] { layout().inject({0x83, 0x7C}, 500'000); };
    const auto before = messagesOnBus(0xED);
    call({"on the screen", QStringLiteral("mitschnitt --dauer 2"), none, Exit::Done,
        QStringLiteral("# LocoNet-Mitschnitt|0.501286 < 83 7C ; Fahrstrom ein"), names, 0, traffic});
    call({"as objects", QStringLiteral("mitschnitt --json --dauer 2"), none, Exit::Done,
        QStringLiteral("\"bytes\":\"83 7C\""), names, 0, traffic});
    call({"into a file", QStringLiteral("mitschnitt --dauer 2 bus.lntrace"), none, Exit::Done,
        QStringLiteral("bus.lntrace: 1"), names, 0, traffic});
    call({"which is there", QStringLiteral("mitschnitt --dauer 2 bus.lntrace"), QStringLiteral("n"), Exit::Stopped,
        QStringLiteral("Soll sie ersetzt werden?"), names, 0});
    call({"not that ending", QStringLiteral("mitschnitt bus.csv"), none, Exit::Usage, QStringLiteral(".lntrace"),
        names, 0});
    call({"no number", QStringLiteral("mitschnitt --dauer lang"), none, Exit::Usage, QStringLiteral("Sekunden"),
        names, 0});
    call({"until Ctrl-C", QStringLiteral("mitschnitt"), none, Exit::Done, QStringLiteral("Strg-C"), names, 0,
        [this] { events.after(3'000'000, TakeInterrupt); }});
    EXPECT_EQ(messagesOnBus(0xED), before);
}

TEST_F(Calls, FilesOfAnotherKindAreNeitherReplacedNorTaken)
{
    freshWorld();
    const auto names = QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-");
    const auto none = QStringLiteral("-");
    fileWith(QStringLiteral("loks.csv"), "Adresse;Name\n3;DREI\n");
    fileWith(QStringLiteral("zu.csv"), "Magnetartikel;Symbol\n1;7\n");
    fileWith(QStringLiteral("alt.csv"), "Adresse;Symbol\n1;7\n");
    fileWith(QStringLiteral("leer.dds"), "");
    fileWith(QStringLiteral("gross.csv"), QByteArray(17 * 1024 * 1024, 'a'));
    EXPECT_TRUE(MakeFolder(path(QStringLiteral("ordner.dds"))));
    const auto kind = QStringLiteral("Der Name muss auf .dds enden");
    struct Wrong {
        const char *words;
        QString said;
    };
    for (const Wrong &row :
        {Wrong{"sichern --loks 3 loks.csv", kind}, Wrong{"sichern --loks 3 --als csv loks.csv", kind},
            Wrong{"sichern --loks 3 --als dds loks.csv", QStringLiteral("Sie wird nicht ersetzt")},
            Wrong{"tabelle lesen zuordnung leer.dds", QStringLiteral("Der Name muss auf .csv enden")},
            Wrong{"schreiben alt.csv", QStringLiteral("weder Namen noch Funktionen")},
            Wrong{"schreiben zu.csv", QStringLiteral("Adresse: diese Spalte fehlt")},
            Wrong{"schreiben gross.csv", QStringLiteral("zu groß (höchstens 16 MB)")},
            Wrong{"zurueck leer.dds", QStringLiteral("leer und keine Datensicherung")},
            Wrong{"zurueck loks.csv", QStringLiteral("eine Liste und keine Datensicherung")},
            Wrong{"zurueck ordner.dds", QStringLiteral("ist keine Datei")},
            Wrong{"vergleichen leer.dds", QStringLiteral("leer und keine Datensicherung")},
            Wrong{"vergleichen loks.csv", QStringLiteral("eine Liste und keine Datensicherung")}})
        call({row.words, QString::fromLatin1(row.words), none, Exit::Usage, row.said, names, 0});
    EXPECT_EQ(ReadWholeFile(path(QStringLiteral("loks.csv"))), QByteArray("Adresse;Name\n3;DREI\n"));
    call({"a new one", QStringLiteral("sichern --loks 3 --als dds neu.bak"), none, Exit::Done, {}, names, 0});
    call({"the old heading", QStringLiteral("tabelle schreiben --probe zuordnung alt.csv"), none, Exit::Done,
        QStringLiteral("Adresse 1"), names, 0});
    call({"the new one", QStringLiteral("tabelle schreiben --probe zuordnung zu.csv"), none, Exit::Done,
        QStringLiteral("Adresse 1"), names, 0});
}

TEST_F(Calls, ABrokenOffDownloadLeavesTheFile)
{
    for (const int after : {300, 1000, 2000, 3000}) { // ms: also where what came looks like a whole database
        freshWorld();
        layout().station.settings.present = true;
        layout().station.locos = sim::DemoStationLocos();
        fileWith(QStringLiteral("z.csv"), "alt\n");
        events.after(after * 1000, TakeInterrupt);
        call({"broken off", QStringLiteral("zentrale z.csv"), QStringLiteral("-"), Exit::Stopped,
            QStringLiteral("Abgebrochen."), QStringLiteral("LOK 3,LOK 4,LOK 8,LOK 9,-"), 0});
        EXPECT_EQ(ReadWholeFile(path(QStringLiteral("z.csv"))), QByteArray("alt\n")) << after;
    }
}

TEST_F(Calls, ListsAreReadAsPeopleKeepThem)
{
    freshWorld();
    const auto none = QStringLiteral("-");
    const auto list = [this](const QByteArray &content) {
        fileWith(QStringLiteral("l.csv"), content);
        return QStringLiteral("schreiben l.csv");
    };
    const auto after = QStringLiteral("DREI,LOK 4,LOK 8,LOK 9,-");
    QByteArray utf16("\xFF\xFE", 2);
    for (const QChar c : QStringLiteral("Adresse\tName\r\n3\tDREI\r\n"))
        utf16 += QByteArray(1, static_cast<char>(c.unicode())) + '\0';
    for (const QByteArray &content : {QByteArray("sep=;\n# meine Loks\nLokadresse;Lokname\n3;DREI\n# Ende\n"), utf16,
             QByteArray("Adr.,Name\r3,DREI\r4,\r"),
             QByteArray("Adresse;Name;Symbol;f1;MultiUni\n3;DREI;;;\n8;;;;\n")}) {
        freshWorld();
        call({"written", list(content), none, Exit::Done, QStringLiteral("Lokdatensätze: 3\n"), after, 1});
    }
    freshWorld();
    call({"momentary", list("Adresse;Name;Tast\n3;DREI;\"2,4\"\n"), none, Exit::Done, {}, after, 1});
    EXPECT_EQ(flashBytes(LocoRecordAddress(3) + 28, 1), QByteArray("\x14", 1));
    call({"open quote", list("Adresse;Name\n3;DREI\n4;\"VIER\n"), none, Exit::Usage,
        QStringLiteral("Zeile 3: ein Anführungszeichen wird nie geschlossen"), after, 0});
    call({"-n looks only", QStringLiteral("schreiben -n l.csv"), none, Exit::Done, QStringLiteral("Lok 4: "), after,
        0, [&] { list("Adresse;Name\n4;VIER\n"); }});
    call({"one dash", QStringLiteral("schreiben -probe l.csv"), none, Exit::Done, QStringLiteral("Lok 4: "), after,
        0});
    call({"no answer", QStringLiteral("loeschen 4"), QStringLiteral("vielleicht,nein"), Exit::Stopped,
        QStringLiteral("Bitte mit ja oder nein antworten."), after, 0});
}

/// From the moment of a kill on nothing comes to the disk any more.
class DeadDisk : public Disk
{
public:
    bool dead = false;
    [[nodiscard]] bool write(QFileDevice &file, const QByteArray &bytes) override
    {
        return !dead && Disk::write(file, bytes);
    }
    [[nodiscard]] bool replace(QSaveFile &file) override
    {
        if (!dead)
            return Disk::replace(file);
        file.cancelWriting();
        return false;
    }
    bool remove(const QString &path) override { return !dead && Disk::remove(path); }
    [[nodiscard]] bool rename(const QString &from, const QString &to) override
    {
        return !dead && Disk::rename(from, to);
    }
};

/// Calls that are broken in every way at a random moment, in both cadences, and what is called next.
class Breaks : public Calls
{
protected:
    struct Scene {
        const char *before; // called undisturbed; nothing: null
        const char *words;  // broken
        const char *again;  // wanted after a break
    };
    static constexpr std::array Scenes{Scene{nullptr, "schreiben --ja a.csv", "schreiben --fortsetzen a.csv"},
        Scene{nullptr, "schreiben --ja --alles-schreiben a.csv", "schreiben --ja a.csv"},
        Scene{nullptr, "schreiben --ja --nicht-pruefen a.csv", "schreiben --ja a.csv"},
        Scene{nullptr, "schreiben --ja --ohne-sicherung a.csv", "schreiben --fortsetzen a.csv"},
        Scene{nullptr, "zurueck --ja s.dds", "zurueck --ja s.dds"},
        Scene{nullptr, "loeschen --ja 3,9", "loeschen --ja 3,9"},
        Scene{
            nullptr, "symbol schreiben --ja funktion 200 ein s.png", "symbol schreiben --ja funktion 200 ein s.png"},
        Scene{"schreiben --ja a.csv", "zuruecknehmen --ja", "zuruecknehmen --ja"}};
    enum class How { Kill, Signal, HangUp, Power, PowerInPage, Late, Doubled, Lost, Count };
    struct Course { // of a scene without a break
        std::vector<QByteArray> begins;
        std::vector<QByteArray> ends;
        qint64 longUs = 0;
        int answers = 0;
    };

    void begin(const Scene &scene)
    {
        freshWorld();
        QFile::copy(pictures.filePath(QStringLiteral("s.png")), path(QStringLiteral("s.png")));
        EXPECT_EQ(exitOf("umwandeln a.csv s.dds"), Exit::Done);
        flash().setBytes(FktSymbolAddress + 200 * 64, QByteArray("\x06\x0D", 2) + QByteArray(28, '\x11'));
        flash().setBytes(FktSymbolAddress + 201 * 64, QByteArray("\x06\x0D", 2) + QByteArray(28, '\x22'));
        if (scene.before != nullptr) {
            EXPECT_EQ(exitOf(scene.before), Exit::Done);
        }
    }

    Exit exitOf(const char *call, const QStringList &answers = {})
    {
        QStringList words = QString::fromLatin1(call).split(u' ');
        for (QString &word : words)
            word = word.contains(u'.') ? path(word) : word;
        typing.present = !answers.isEmpty();
        typing.lines = answers;
        atTerminal = true;
        return run({}, words);
    }

    /// Records 1 to 31 as far as they count, and the symbols of a page.
    std::vector<QByteArray> records()
    {
        std::vector<QByteArray> all;
        for (int n = 1; n < 32; ++n) {
            const QByteArray bytes = flashBytes(LocoRecordAddress(n), LocoRecordSize);
            all.push_back(bytes.startsWith('\xFF') ? QByteArray(LocoRecordSize, '\xFF') : bytes);
        }
        for (int half = 0; half < 16; ++half)
            all.push_back(flashBytes(FktSymbolAddress + 200 * 64 + half * 32, 32));
        return all;
    }

    static int requests(const sim::Handheld &one) { return one.state.stores + one.state.readBacks; }

    Course undisturbed(const Scene &scene)
    {
        begin(scene);
        Course course{records(), {}, events.nowUs, requests(handheld())};
        EXPECT_EQ(exitOf(scene.words), Exit::Done) << messages.toStdString();
        course.ends = records();
        course.longUs = events.nowUs - course.longUs;
        course.answers = requests(handheld()) - course.answers;
        return course;
    }

    void arrange(How how, const Course &course)
    {
        const auto moment = 50'000 + static_cast<qint64>(dice() % 1000) * course.longUs / 1000;
        const int nth = 1 + static_cast<int>(dice() % static_cast<unsigned>(course.answers));
        sim::Faults faults;
        faults.seed = dice();
        faults.doubledUs = 1'000 + dice() % 50'000;
        faults.lateAnswerUs = 1'900'000 + dice() % 3'000'000;
        const double often = std::array{0.0, 0.03, 0.4}.at(dice() % 3);
        for (const auto &[of, fault] : {std::pair(How::Late, &sim::Faults::lateAnswer),
                 {How::Doubled, &sim::Faults::doubledAnswer}, {How::Lost, &sim::Faults::missedRequest}}) {
            if (how == of)
                faults.*fault = {nth, often};
        }
        if (how == How::Lost && dice() % 2 == 0)
            std::swap(faults.lostAck, faults.missedRequest);
        if (how == How::PowerInPage)
            faults.powerCut.nth = 1 + static_cast<int>(dice() % 2);
        layout().faults.set(faults);
        const auto strikes = [this, how] {
            disk.dead = how == How::Kill;
            if (how == How::Kill || how == How::HangUp)
                port.hangUp();
            else if (how == How::Power)
                handheld().cutPower(events.nowUs);
            else
                TakeInterrupt();
        };
        if (how <= How::Power)
            events.after(moment, strikes);
    }

    /// The next program, on the next day of the handheld.
    void afterBreak(const Course &course)
    {
        events.run(6 + static_cast<double>(course.longUs) / 1e6); // the moment is over, whether it was reached or not
        disk.dead = false;
        layout().faults.set({});
        handheld().restorePower();
        port.replug();
        ResetRunControl();
        events.run(6);
    }

    /// Each record is what it was or what it was to be; destroyed ones are allowed in the pages in work.
    static bool isOldOrNew(const std::vector<QByteArray> &now, const Course &course)
    {
        for (size_t i = 0; i < now.size(); ++i) {
            if (now.at(i) != course.begins.at(i) && now.at(i) != course.ends.at(i))
                return false;
        }
        return true;
    }

    bool aPageWaits()
    {
        return !QDir(path(QStringLiteral("konf/Sicherungen"))).entryList({QStringLiteral("*.offen")}).isEmpty();
    }

    QTemporaryDir pictures;
    DeadDisk disk;
    std::mt19937 dice;
};

/// 200 as a rule; HR_BREAKS and HR_SEED ask for more, and for others.
TEST_F(Breaks, NothingIsWrongAndSilentAndWhateverIsCalledNextMakesItGood)
{
    const int wanted = qEnvironmentVariableIntValue("HR_BREAKS");
    const int breaks = wanted > 0 ? wanted : 200;
    dice.seed(static_cast<unsigned>(qEnvironmentVariableIntValue("HR_SEED")));
    events.limitSeconds = 1e9;
    layout().bus.keepLog = false;
    InstallDisk(&disk);
    flash().setBytes(FktSymbolAddress + 202 * 64, QByteArray("\x06\x0D", 2) + QByteArray(28, '\x54'));
    ASSERT_EQ(run(QStringLiteral("symbol lesen funktion 202 ein"), {pictures.filePath(QStringLiteral("s.png"))}),
        Exit::Done);
    std::map<std::pair<size_t, Cadence>, Course> courses;
    std::array<int, static_cast<size_t>(How::Count)> broken{};
    for (int i = 0; i < breaks; ++i) {
        const size_t number = dice() % Scenes.size();
        const Scene &scene = Scenes.at(number);
        const auto how = static_cast<How>(dice() % static_cast<unsigned>(How::Count));
        const Cadence cadence = dice() % 2 == 0 ? Cadence::Ticks : Cadence::Events;
        SCOPED_TRACE(testing::Message() << i << ": " << scene.words << ", how " << static_cast<int>(how)
                                        << (cadence == Cadence::Ticks ? " in ticks" : " fast"));
        ChooseCadence(cadence);
        if (!courses.contains({number, cadence}))
            courses.emplace(std::pair(number, cadence), undisturbed(scene));
        const Course &course = courses.at({number, cadence});
        begin(scene);
        ChooseCadence(cadence);
        arrange(how, course);
        const Exit first = exitOf(scene.words);
        const QString said = messages;
        const bool inPage = how == How::Kill || how == How::HangUp || how == How::Power || how == How::PowerInPage;
        broken.at(static_cast<size_t>(how)) += first != Exit::Done ? 1 : 0;
        if (first == Exit::Done) {
            ASSERT_EQ(records(), course.ends) << "wrong and silent: " << said.toStdString();
        } else {
            ASSERT_FALSE(said.isEmpty() && out.isEmpty());
            ASSERT_TRUE(inPage || isOldOrNew(records(), course)) << said.toStdString();
        }
        ASSERT_TRUE(aPageWaits() || isOldOrNew(records(), course))
            << "destroyed and forgotten: " << said.toStdString();
        afterBreak(course);
        ChooseCadence(cadence);
        // Another list on the same page finds the page first; then what was wanted is wanted again.
        if (dice() % 3 == 0) {
            ASSERT_EQ(exitOf("schreiben --ja b.csv"), Exit::Done) << said.toStdString() << "\n"
                                                                  << messages.toStdString();
            std::vector<QByteArray> now = records();
            ASSERT_NE(now.at(3), course.ends.at(3)) << "loco 4 is another one";
            now.at(3) = course.ends.at(3);
            ASSERT_TRUE(isOldOrNew(now, course)) << said.toStdString() << "\n" << messages.toStdString();
            setLoco(4, QStringLiteral("LOK 4"));
        }
        for (int more = 0; more < 2 && (records() != course.ends || aPageWaits()); ++more) {
            Exit again = exitOf(scene.again);
            if (again == Exit::Usage) // there was nothing to go on with
                again = exitOf(scene.words);
            if (messages.contains(
                    QStringLiteral("Diese Frage beantwortet --ja nicht."))) // killed in a journal's head
                again = exitOf(QByteArray(scene.words).replace("--ja ", ""), QStringList(4, QStringLiteral("j")));
            ASSERT_EQ(again, Exit::Done) << said.toStdString() << "\n" << messages.toStdString();
        }
        ASSERT_EQ(records(), course.ends) << said.toStdString() << "\n" << messages.toStdString();
        ASSERT_FALSE(aPageWaits());
    }
    InstallDisk(nullptr);
    for (size_t how = 0; how < broken.size() && breaks >= 200; ++how)
        EXPECT_GT(broken.at(how), 2) << how;
}

TEST_F(Calls, YesToAllIsNotYesForEver)
{
    typing.present = false;
    TerminalAsk terminal(typing, {true, true});
    const BoxText question{QStringLiteral("Noch einmal?"), {}, BoxIcon::None};
    EXPECT_TRUE(terminal.askYesNo(question, false));
    EXPECT_FALSE(terminal.askYesNo(question, true)) << "Ja did not help";
    EXPECT_FALSE(terminal.askYesNo({QStringLiteral("Derselbe Handregler?"), {}, BoxIcon::Critical, true}, true));
}

} // namespace hr::tests
