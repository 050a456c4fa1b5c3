#include "sim/pty/pty_bus.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <utility>

namespace hr::sim
{
namespace
{

constexpr int DumpWidth = 16;
constexpr double SecondUs = 1e6;
constexpr int ProgramOpcode = 0x83;

QString SenderText(Sender sender)
{
    switch (sender) {
    case Sender::Pc:
        return QStringLiteral("PC    ");
    case Sender::Device:
        return QStringLiteral("Gerät ");
    case Sender::Foreign:
        break;
    }
    return QStringLiteral("fremd ");
}

// Decimal, or hexadecimal after "0x".
int NumberOf(const QStringList &words, int index)
{
    return words.value(index).toInt(nullptr, 0);
}

} // namespace

void Print(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

PtyBus::PtyBus(Events &clock, QString linkPath) : events(clock), model(clock), link(std::move(linkPath))
{
    model.bus.keepLog = false;
    model.adapter.setLineUnknown();
    model.adapter.onHangUp = [this] { unplug(); };
    model.onBytes = [this](const Bytes &bytes) {
        pty.write(bytes);
        if (server)
            server->fromBus(bytes);
    };
    pty.onBytes = [this](const Bytes &bytes) { model.fromPc(bytes); };
}

PtyBus::~PtyBus()
{
    if (!link.isEmpty() && QFileInfo(link).isSymbolicLink())
        QFile::remove(link);
}

bool PtyBus::plug()
{
    if (!pty.open() || !updateLink())
        return false;
    Print(QStringLiteral("Port: ") + pty.path());
    return true;
}

bool PtyBus::serve(quint16 networkPort, const LbServer::Manner &manner)
{
    server = std::make_unique<LbServer>(events, model, manner);
    if (!server->listen(networkPort))
        return false;
    Print(QStringLiteral("Netz: localhost:%1").arg(server->port()));
    return true;
}

void PtyBus::unplug()
{
    pty.close();
    if (server)
        server->hangUp();
    model.discardFromPc();
    model.adapter.discardForPc();
    Print(QStringLiteral("Port getrennt"));
}

// Only an old link is replaced, never a file.
bool PtyBus::updateLink() const
{
    if (link.isEmpty())
        return true;
    if (QFileInfo(link).isSymbolicLink())
        QFile::remove(link);
    return QFile::link(pty.path(), link);
}

// "0.012345 < 83 7C ; words": written anew here, so that a mistake in the program's own reading shows.
bool PtyBus::replay(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        const QByteArray what = line.left(line.indexOf(';')).trimmed();
        const qsizetype mark = what.indexOf(" < ");
        if (line.startsWith('#') || mark < 0)
            continue;
        const auto delayUs = static_cast<qint64>(what.left(mark).toDouble() * SecondUs);
        model.inject(ToBytes(QByteArray::fromHex(what.mid(mark + 3))), delayUs);
    }
    return true;
}

void PtyBus::logMessages()
{
    model.bus.onEnd = [this, startUs = events.monotonicUs()](const BusMessage &message) {
        const double seconds = static_cast<double>(message.startUs - startUs) / SecondUs;
        Print(QString::number(seconds, 'f', 4) + QLatin1Char(' ') + SenderText(message.sender)
            + HexText(message.bytes));
    };
}

QString PtyBus::commandHelp()
{
    return QStringLiteral("hangup, replug, away, back, second, alone, dump ADRESSE ANZAHL, stats, foreign HEX, quit");
}

bool PtyBus::runCommand(const QString &line)
{
    const QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString command = words.value(0);
    if (command == QLatin1String("quit"))
        return false;
    if (command == QLatin1String("hangup"))
        unplug();
    else if (command == QLatin1String("replug"))
        plug();
    else if (command == QLatin1String("dump"))
        dump(words);
    else if (command == QLatin1String("stats"))
        printStatistics();
    else if (command == QLatin1String("foreign"))
        model.inject(ToBytes(QByteArray::fromHex(words.mid(1).join(QString()).toLatin1())));
    else if (command == QLatin1String("away"))
        model.handheld.settings.present = false;
    else if (command == QLatin1String("back"))
        model.handheld.settings.present = true;
    else if (command == QLatin1String("second"))
        model.plugSecond();
    else if (command == QLatin1String("alone"))
        model.unplugSecond();
    else if (!command.isEmpty())
        Print(QStringLiteral("Befehle: ") + commandHelp());
    return true;
}

void PtyBus::dump(const QStringList &words) const
{
    const int first = NumberOf(words, 1);
    const int count = NumberOf(words, 2);
    if (first < 0 || count < 0 || first > FlashSize || count > FlashSize - first) {
        Print(QStringLiteral("Adresse außerhalb des Speichers"));
        return;
    }
    for (int address = first; address < first + count; address += DumpWidth) {
        const int width = qMin(DumpWidth, first + count - address);
        const QString number = QStringLiteral("%1 ").arg(address, 6, 16, QLatin1Char('0')).toUpper();
        Print(number + HexText(ToBytes(model.handheld.flash.bytes(address, width))));
    }
}

void PtyBus::printStatistics() const
{
    const HandheldState &state = model.handheld.state;
    const DataflashState &chip = model.handheld.flash.state;
    Print(
        QStringLiteral("zurückgeschickt %1, Kennung %2, abgelegt %3, ausgeführt %4, zurückgelesen %5, abgewiesen %6")
            .arg(state.normalModes)
            .arg(state.identifications)
            .arg(state.stores)
            .arg(state.executes)
            .arg(state.readBacks)
            .arg(state.rejected));
    Print(QStringLiteral("Seiten programmiert %1, vom Baustein nicht beachtet %2")
              .arg(chip.executed.at(ProgramOpcode))
              .arg(chip.ignored));
}

} // namespace hr::sim
