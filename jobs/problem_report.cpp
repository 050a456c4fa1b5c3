#include "jobs/problem_report.h"

#include "handheld/known_locos.h"
#include "handheld/message_words.h"
#include "link/cadence.h"
#include "link/link_state.h"
#include "platform/port_name.h"
#include "platform/text.h"
#include "platform/world.h"

#include <QDir>
#include <QRegularExpression>
#include <QSysInfo>

namespace hr::jobs
{

namespace
{

QString Section(const QString &title, const QString &text)
{
    return u'\n' + title + u'\n' + QString(title.size(), u'-') + u'\n' + text + (text.endsWith(u'\n') ? u"" : u"\n");
}

/// A computer's name may say whose it is.
QString PortText(Personal personal)
{
    const QString port = TheLink().PortNumber.text.trimmed();
    const auto network = NetworkPortOf(port);
    if (!network || personal == Personal::Shown)
        return port;
    return QStringLiteral("%1RECHNER:%2")
        .arg(network->plainBytes ? QStringLiteral("raw:") : QString())
        .arg(network->port);
}

QString WithoutNames(QString text)
{
    if (const QString home = QDir::homePath(); home.size() > 1) {
        text.replace(QDir::toNativeSeparators(home), QStringLiteral("~"));
        text.replace(home, QStringLiteral("~"));
    }
    for (const int address : KnownAddresses()) { // whole words: a loco may be called "E"
        const QRegularExpression name(
            QStringLiteral("(?<!\\w)%1(?!\\w)").arg(QRegularExpression::escape(KnownLocoName(address))),
            QRegularExpression::UseUnicodePropertiesOption);
        if (!KnownLocoName(address).isEmpty())
            text.replace(name, QStringLiteral("(Lokname)"));
    }
    if (const auto network = NetworkPortOf(TheLink().PortNumber.text); network && !network->host.isEmpty())
        text.replace(network->host, QStringLiteral("RECHNER"));
    return text;
}

/// The data of a transfer may be a loco's name.
QString MessageLine(const TraceRow &row, Personal personal)
{
    constexpr qsizetype head = 5;
    const bool holdsData = row.bytes.size() == TransferMessageLength;
    if (personal == Personal::Shown || !holdsData)
        return TraceLine(row);
    TraceRow hidden = row;
    hidden.bytes.truncate(head);
    const QString words = MessageWords(row.message());
    return TraceTime(row) + (row.own ? QStringLiteral(" > ") : QStringLiteral(" < ")) + TraceBytes(hidden)
        + QStringLiteral(" .. ; ") + (row.sound() ? QString() : QStringLiteral("FALSCHE PRÜFSUMME, "))
        + (words.contains(QStringLiteral(": ")) ? words.section(QStringLiteral(": "), 0, 0) : words);
}

QString MessageLines(const BusTrace &trace, Personal personal)
{
    QString text;
    const qint64 most = static_cast<qint64>(ReportedMessages);
    for (qint64 number = qMax(trace.first(), trace.end() - most); number < trace.end(); ++number)
        text += MessageLine(trace.row(number), personal) + u'\n';
    return text.isEmpty() ? QStringLiteral("keine") : text;
}

/// Only the settings that concern the connection: the others name files.
QString ConnectionSettings(const QString &settings)
{
    QString text;
    bool wanted = false;
    for (const QString &line : ScreenLines(settings).split(u'\n')) {
        if (line.startsWith(u'['))
            wanted = line.startsWith(QStringLiteral("[Verbindung]"));
        if (wanted && !line.isEmpty())
            text += line + u'\n';
    }
    return text.isEmpty() ? QStringLiteral("keine") : text;
}

} // namespace

QString ProblemReport(const ProblemFacts &facts, Personal personal)
{
    const QString cadence =
        CurrentCadence() == Cadence::Events ? QStringLiteral("schnell") : QStringLiteral("gewohnt");
    const QString head = QStringLiteral("Problembericht\n"
                                        "Programm:    %1\n"
                                        "System:      %2, %3, Qt %4\n"
                                        "Zeit:        %5\n"
                                        "Anschluss:   %6, Interface %7, Übertragung %8\n"
                                        "Handregler:  %9\n")
                             .arg(facts.program, QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(),
                                 QString::fromLatin1(qVersion()), TheEvents().now().toString(Qt::ISODate),
                                 PortText(personal), QString::number(TheLink().InterfaceType), cadence,
                                 facts.handheld.isEmpty() ? QStringLiteral("keiner gefunden") : facts.handheld);
    const QString note = personal == Personal::Shown
        ? QString()
        : QStringLiteral("Loknamen, Benutzer, Rechner und die übertragenen Daten sind ersetzt.\n");
    QString reports = facts.lastReports.isEmpty() ? QStringLiteral("keine") : facts.lastReports.join(u'\n');
    if (personal == Personal::Hidden)
        reports = WithoutNames(reports);
    return head + note
        + Section(QStringLiteral("Einstellungen"),
            personal == Personal::Shown ? ScreenLines(facts.settings) : ConnectionSettings(facts.settings))
        + Section(QStringLiteral("Letzte Meldungen des Programms"), ScreenLines(reports))
        + Section(QStringLiteral("Letzte Meldungen auf dem Bus"),
            facts.messages == nullptr ? QStringLiteral("keine") : MessageLines(*facts.messages, personal));
}

} // namespace hr::jobs
