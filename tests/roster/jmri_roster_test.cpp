// Rosters of another program: what comes in, what is told, and that a hostile file does no harm.

#include "roster/jmri_roster.h"

#include "platform/files.h"
#include "platform/text.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hr::tests
{

namespace
{

const FunctionWords &Words()
{
    static const FunctionWords words("# Wort\n1 = Licht, Headlight\n14=Pfeife,Whistle\n15 = Pfeife kurz\nx = y\n"
                                     "300 = zu viel\n16 = Horn\n26 = Rangierlicht\n30 = Fan\n18 = Glocke, Bell\n");
    return words;
}

LocoList Read(const QByteArray &locos)
{
    return ReadJmriRoster(QStringLiteral("roster.xml"), locos, Words());
}

QByteArray Roster(const QByteArray &locos)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<?xml-stylesheet href=\"/xml/XSLT/roster.xsl\"?>\n"
           "<!-- a comment --><roster-config xmlns:xsi=\"http://x\" xsi:noNamespaceSchemaLocation=\"r.xsd\"><roster>"
        + locos + "</roster></roster-config>";
}

/// "3 E94: 1=14 2=0T"
QStringList Shown(const LocoList &list)
{
    QStringList lines;
    for (const ListedLoco &loco : list.locos) {
        QString line = QStringLiteral("%1 %2:").arg(loco.address).arg(loco.name.value_or(QStringLiteral("-")));
        for (size_t f = 0; f < FunctionCount; ++f) {
            if (loco.symbols.at(f).value_or(0) != 0 || loco.modes.at(f).value_or(0) != 0)
                line += QStringLiteral(" %1=%2%3")
                            .arg(f)
                            .arg(loco.symbols.at(f).value_or(-1))
                            .arg(loco.modes.at(f) == 1 ? QStringLiteral("T") : QString());
        }
        lines += line;
    }
    return lines;
}

void Put(const QString &name, const QByteArray &content)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

TEST(JmriRoster, LocosComeWithNamesAddressesAndFunctions)
{
    const LocoList list = Read(Roster(
        R"(<locomotive id="BR 103 &amp; Co" fileName="C:\Rosters\BR.xml" dccAddress="999">
             <locoaddress><dcclocoaddress number="103" longaddress="no"/><number>103</number></locoaddress>
             <functionlabels><functionlabel num="0" lockable="false">Headlight</functionlabel>
               <functionlabel num="1" lockable="true">Kurze Pfeife</functionlabel>
               <functionlabel num="2" lockable="false">Pfeife kurz</functionlabel>
               <functionlabel num="3">Rangierlicht an</functionlabel><functionlabel num="4">Elefant</functionlabel>
               <functionlabel num="5" lockable="false">F5</functionlabel><functionlabel num="28">Horn</functionlabel>
             </functionlabels></locomotive>
           <locomotive id="" roadName="DB" roadNumber="24" dccAddress="24"/>
           <locomotive id="Zug" dccAddress="7"><locoaddress><protocol>dcc_consist</protocol></locoaddress></locomotive>
           <locomotive id="Fern" dccAddress="10239"/><locomotive id="Doppelt" dccAddress="24"/>
           <locomotive id="Eine Lok mit sehr langem Namen" dccAddress="5"><new><deep>1</deep></new></locomotive>)"));
    EXPECT_TRUE(list.faults.empty());
    EXPECT_EQ(Shown(list),
        QStringList({QStringLiteral("103 BR 103   CO: 0=-1T 1=14 2=15T 3=26 5=0T"), QStringLiteral("24 DB 24:"),
            QStringLiteral("5 EINE LOK MIT SEHR LAN:")}));
    EXPECT_FALSE(list.locos.at(0).symbols.at(4)) << "stays as the handheld has it";
    EXPECT_EQ(list.locos.at(0).symbols.at(6), 0);
    EXPECT_FALSE(list.locos.at(1).symbols.at(1)) << "no labels at all say nothing";
    EXPECT_EQ(list.notes.size(), 7) << list.notes.join(u'\n').toStdString();
    for (const char *told :
        {"BR 103 & Co", "\"Elefant\"", "f28", "Zug (Adresse 7)", "Fern (Adresse 10239)", "Doppelt"})
        EXPECT_TRUE(list.notes.join(u' ').contains(QString::fromUtf8(told))) << told;
}

TEST(JmriRoster, ARecordGoesOutAndComesBackWhole)
{
    RosterLoco loco{9999, {FitLocoName(QStringLiteral("Ä<2>")), {}, {}, 1, 63}};
    loco.record.symbols.at(1) = 14;
    loco.record.symbols.at(2) = 200;
    loco.record.symbols.at(24) = 26;
    for (const size_t f : {0U, 2U, 7U})
        loco.record.modes.at(f) = 1;
    const QByteArray file = JmriRosterOf({loco}, Words());
    const LocoList list = Read(file);
    ASSERT_EQ(list.locos.size(), 1U) << file.toStdString();
    EXPECT_TRUE(list.notes.empty());
    LocoRecord present{FitLocoName(QStringLiteral("alt")), {}, {}, 0, 3};
    present.symbols.fill(9);
    present.modes.fill(1);
    present.symbols.at(0) = 0;
    LocoRecord back = Applied(list.locos.front(), present);
    EXPECT_EQ(WithoutTrailingBlanks(back.name), WithoutTrailingBlanks(loco.record.name));
    back.name = loco.record.name;
    EXPECT_EQ(back, loco.record);
}

TEST(JmriRoster, NamedFilesComeFromTheRostersFolderOnly)
{
    const QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("jmri"));
    ASSERT_TRUE(MakeFolder(folder + QStringLiteral("/roster")));
    const QByteArray loco =
        "<locomotive-config><locomotive id=\"In der Datei\" dccAddress=\"12\"><functionlabels>"
        "<functionlabel num=\"1\">Horn</functionlabel></functionlabels></locomotive></locomotive-config>";
    Put(folder + QStringLiteral("/roster/a.xml"), loco);
    Put(root.filePath(QStringLiteral("b.xml")), loco);
    QFile::link(root.filePath(QStringLiteral("b.xml")), folder + QStringLiteral("/c.xml"));
    const QByteArray roster = Roster("<locomotive id=\"A\" fileName=\"D:\\alt\\a.xml\"/>"
                                     "<locomotive id=\"B\" dccAddress=\"13\" fileName=\"../b.xml\"/>"
                                     "<locomotive id=\"C\" dccAddress=\"14\" fileName=\"c.xml\"/>");
    Put(folder + QStringLiteral("/roster.xml"), roster);
    const QStringList expected{QStringLiteral("12 A: 1=16"), QStringLiteral("13 B:"), QStringLiteral("14 C:")};
    EXPECT_EQ(Shown(ReadJmriFolder(folder, Words())), expected);
    const LocoList files = ReadJmriFolder(folder + QStringLiteral("/roster"), Words());
    EXPECT_EQ(Shown(files), QStringList(QStringLiteral("12 IN DER DATEI: 1=16")));
    EXPECT_FALSE(ReadJmriFolder(root.filePath(QStringLiteral("none")), Words()).faults.empty());
}

TEST(JmriRoster, WhatCannotBeReadSaysWhyAndDoesNoHarm)
{
    QByteArray bomb = "<!DOCTYPE r [<!ENTITY a0 \"aaaaaaaaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i)
        bomb += "<!ENTITY a" + QByteArray::number(i) + " \""
            + QByteArray("&a" + QByteArray::number(i - 1) + ";").repeated(16) + "\">";
    bomb += "]><roster><locomotive id=\"x\" dccAddress=\"3\"><protocol>&a11;</protocol></locomotive></roster>";
    const QByteArray latin = QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r><locomotive id=\"\xC4\" "
                                        "dccAddress=\"3\"/></r>");
    EXPECT_EQ(Shown(Read(latin)), QStringList(QStringLiteral("3 Ä:")));
    QElapsedTimer time;
    time.start();
    for (const QByteArray &file : {bomb, QByteArray("<roster><locomotive id=\"a\""), QByteArray("kein XML"),
             QByteArray(), QByteArray("<a>").repeated(100000), QByteArray(100 << 20, ' '),
             QByteArray("<roster><consist id=\"1\"/></roster>"), QByteArray("<roster/>"),
             QByteArray("<roster><locomotive id=\"nur eine\" dccAddress=\"10239\"/></roster>")}) {
        const LocoList list = Read(file);
        EXPECT_EQ(list.faults.size(), 1U) << file.left(40).toStdString();
        EXPECT_TRUE(list.locos.empty());
    }
    EXPECT_LT(time.elapsed(), 5000);
}

} // namespace hr::tests
