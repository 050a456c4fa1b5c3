#include "roster/jmri_roster.h"

#include "handheld/text_encoding.h"
#include "platform/files.h"
#include "platform/text.h"

#include <QDir>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <set>

namespace hr::roster
{

namespace
{

constexpr qint64 LargestFile = 16LL << 20U; // bytes; a roster of 2,000 locos has 6 MB
constexpr int HighestByte = 255;
constexpr int LongAddressFrom = 128; // of a decoder: above 127 it is always a long one

QString SymbolPair()
{
    return QStringLiteral("Handregler Symbol");
}

QString MultiUniPair()
{
    return QStringLiteral("Handregler MultiUni");
}

/// A <locomotive> as it stands in the file.
struct XmlLoco {
    int line = 0;
    QString id;
    QString road; // name and number
    QString fileName;
    QString address;
    bool isConsist = false;
    bool hasLabels = false;
    struct Label {
        int function;
        bool momentary;
        QString text;
    };
    std::vector<Label> labels;
    std::map<QString, QString> pairs;
};

struct XmlFile {
    std::vector<XmlLoco> locos;
    QString fault; // empty: read to its end
    int line = 0;
};

class XmlReader
{
public:
    explicit XmlReader(const QByteArray &content) : xml(content) { }

    XmlFile read()
    {
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"locomotive")
                readLoco();
            else if (xml.name() == u"consist")
                consists = true;
        }
        if (xml.hasError()) {
            file.fault = QStringLiteral("die Datei ist kein brauchbares XML: ") + xml.errorString();
            file.line = static_cast<int>(xml.lineNumber());
        } else if (file.locos.empty()) {
            file.fault = consists ? QStringLiteral("die Datei enthält Doppeltraktionen, keine Loks")
                                  : QStringLiteral("die Datei enthält keine Loks");
        }
        return file;
    }

private:
    [[nodiscard]] QString attribute(const char *name) const
    {
        return xml.attributes().value(QLatin1String(name)).toString().simplified();
    }

    void readLoco()
    {
        XmlLoco loco;
        loco.line = static_cast<int>(xml.lineNumber());
        loco.id = attribute("id");
        loco.road = QString(attribute("roadName") + u' ' + attribute("roadNumber")).simplified();
        loco.fileName = attribute("fileName");
        loco.address = attribute("dccAddress");
        for (int depth = 1; depth > 0 && !xml.atEnd();) {
            const auto token = xml.readNext();
            if (token == QXmlStreamReader::EndElement)
                --depth;
            else if (token == QXmlStreamReader::StartElement && !readPart(loco))
                ++depth;
        }
        file.locos.push_back(loco);
    }

    /// True when the element was read to its end.
    bool readPart(XmlLoco &loco)
    {
        const QStringView name = xml.name();
        if (name == u"dcclocoaddress") {
            if (const QString number = attribute("number"); !number.isEmpty())
                loco.address = number;
        } else if (name == u"protocol") {
            loco.isConsist = text().contains(u"consist", Qt::CaseInsensitive);
            return true;
        } else if (name == u"functionlabels") {
            loco.hasLabels = true;
        } else if (name == u"functionlabel") {
            const bool momentary = attribute("lockable") == u"false";
            bool isNumber = false;
            const int function = attribute("num").toInt(&isNumber);
            loco.labels.push_back({isNumber ? function : -1, momentary, text()});
            return true;
        } else if (name == u"keyvaluepair") {
            key.clear();
        } else if (name == u"key") {
            key = text();
            return true;
        } else if (name == u"value") {
            loco.pairs.insert_or_assign(key, text());
            return true;
        }
        return false;
    }

    QString text() { return xml.readElementText(QXmlStreamReader::SkipChildElements).simplified(); }

    QXmlStreamReader xml;
    XmlFile file;
    QString key;
    bool consists = false;
};

/// Turns what stands in a file into locos of a list.
class Translation
{
public:
    Translation(const FunctionWords &functionWords, LocoList &wanted) : words(functionWords), list(wanted) { }

    void add(const XmlLoco &xml)
    {
        const QString title = xml.id.isEmpty() ? xml.road : xml.id;
        bool isNumber = false;
        const int address = xml.address.toInt(&isNumber);
        const QString called = QStringLiteral("%1 (Adresse %2)").arg(title, xml.address);
        if (xml.isConsist)
            leaveOut(called, QStringLiteral("ist eine Doppeltraktion"));
        else if (!isNumber || address < 1 || address > LastLoco)
            leaveOut(called, QStringLiteral("die Adresse liegt nicht zwischen 1 und 9999"));
        else if (!taken.insert(address).second)
            leaveOut(called, QStringLiteral("eine Lok mit dieser Adresse steht schon davor"));
        else
            list.locos.push_back(translated(xml, address, title));
    }

private:
    void leaveOut(const QString &called, const QString &reason)
    {
        list.notes += QStringLiteral("nicht übernommen: %1: %2").arg(called, reason);
    }

    ListedLoco translated(const XmlLoco &xml, int address, const QString &title)
    {
        ListedLoco loco;
        loco.address = address;
        loco.line = xml.line;
        if (!title.isEmpty())
            loco.name = nameOf(address, title);
        loco.symbol = pair(xml, SymbolPair(), HighestByte);
        loco.multiUni = pair(xml, MultiUniPair(), 1);
        if (xml.hasLabels) {
            loco.symbols.fill(0);
            loco.symbols.at(0).reset(); // its key has a picture of its own
            loco.modes.fill(0);
        }
        for (const XmlLoco::Label &label : xml.labels)
            setFunction(loco, label);
        return loco;
    }

    QString nameOf(int address, const QString &title)
    {
        QString name = AdaptName(title).left(NameLength).trimmed();
        if (!UnknownCharacters(title.toUpper()).isEmpty() || title.size() > NameLength)
            list.notes += QStringLiteral("Lok %1: aus dem Namen \"%2\" wird \"%3\"").arg(address).arg(title, name);
        return name;
    }

    void setFunction(ListedLoco &loco, const XmlLoco::Label &label)
    {
        const QString called = QStringLiteral("Lok %1, f%2").arg(loco.address).arg(label.function);
        if (label.function < 0 || label.function >= FunctionCount) {
            list.notes += called + QStringLiteral(": der Handregler hat nur f0 bis f24");
            return;
        }
        const auto f = static_cast<size_t>(label.function);
        loco.modes.at(f) = label.momentary ? 1 : 0;
        if (f == 0)
            return;
        loco.symbols.at(f) = words.symbolOf(label.text);
        if (!loco.symbols.at(f))
            list.notes +=
                QStringLiteral("%1: \"%2\" ist nicht in konf\\Funktionswoerter.txt").arg(called, label.text);
    }

    static std::optional<int> pair(const XmlLoco &xml, const QString &key, int highest)
    {
        const auto found = xml.pairs.find(key);
        if (found == xml.pairs.end())
            return {};
        bool isNumber = false;
        const int number = found->second.toInt(&isNumber);
        return isNumber && number >= 0 && number <= highest ? std::optional(number) : std::nullopt;
    }

    const FunctionWords &words;
    LocoList &list;
    std::set<int> taken;
};

/// A file that is not larger than any roster.
std::optional<QByteArray> ReadSmallFile(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.isFile() && info.size() <= LargestFile ? ReadWholeFile(fileName) : std::nullopt;
}

/// The file that a roster names, where it lies in the roster's folder; names come from any system.
std::optional<QByteArray> NamedFile(const QDir &folder, const QString &name)
{
    const QString last = name.section(u'/', -1).section(u'\\', -1);
    for (const QString &place : {QStringLiteral("roster/"), QString()}) {
        const QFileInfo info(folder.filePath(place + last));
        const QString inside = folder.canonicalPath() + u'/';
        if (info.isFile() && info.canonicalFilePath().startsWith(inside))
            return ReadSmallFile(info.filePath());
    }
    return {};
}

XmlLoco Completed(const XmlLoco &loco, const QDir &folder)
{
    if (loco.fileName.isEmpty() || (loco.hasLabels && !loco.address.isEmpty()))
        return loco;
    const auto content = NamedFile(folder, loco.fileName);
    const XmlFile file = content ? XmlReader(*content).read() : XmlFile();
    if (file.locos.empty() || !file.fault.isEmpty())
        return loco;
    XmlLoco whole = file.locos.front();
    whole.line = loco.line;
    whole.id = loco.id.isEmpty() ? whole.id : loco.id;
    whole.road = loco.road.isEmpty() ? whole.road : loco.road;
    whole.address = whole.address.isEmpty() ? loco.address : whole.address;
    return whole;
}

void WriteLabels(QXmlStreamWriter &xml, const LocoRecord &record, const FunctionWords &words)
{
    xml.writeStartElement(QStringLiteral("functionlabels"));
    for (size_t f = 0; f < FunctionCount; ++f) {
        const int symbol = f == 0 ? 0 : record.symbols.at(f);
        const bool momentary = record.modes.at(f) == 1;
        if (symbol == 0 && !momentary)
            continue;
        xml.writeStartElement(QStringLiteral("functionlabel"));
        xml.writeAttribute(QStringLiteral("num"), QString::number(f));
        xml.writeAttribute(QStringLiteral("lockable"), momentary ? QStringLiteral("false") : QStringLiteral("true"));
        xml.writeCharacters(symbol == 0 ? QStringLiteral("F%1").arg(f) : words.labelOf(symbol));
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

void WritePair(QXmlStreamWriter &xml, const QString &key, int value)
{
    xml.writeStartElement(QStringLiteral("keyvaluepair"));
    xml.writeTextElement(QStringLiteral("key"), key);
    xml.writeTextElement(QStringLiteral("value"), QString::number(value));
    xml.writeEndElement();
}

void WriteLoco(QXmlStreamWriter &xml, const RosterLoco &loco, const FunctionWords &words)
{
    const QString address = QString::number(loco.address);
    const bool isLong = loco.address >= LongAddressFrom;
    xml.writeStartElement(QStringLiteral("locomotive"));
    xml.writeAttribute(QStringLiteral("id"), WithoutTrailingBlanks(loco.record.name));
    xml.writeAttribute(QStringLiteral("fileName"), QStringLiteral("Lok_%1.xml").arg(address));
    xml.writeAttribute(QStringLiteral("dccAddress"), address);
    xml.writeStartElement(QStringLiteral("locoaddress"));
    xml.writeEmptyElement(QStringLiteral("dcclocoaddress"));
    xml.writeAttribute(QStringLiteral("number"), address);
    xml.writeAttribute(QStringLiteral("longaddress"), isLong ? QStringLiteral("yes") : QStringLiteral("no"));
    xml.writeTextElement(QStringLiteral("number"), address);
    xml.writeTextElement(
        QStringLiteral("protocol"), isLong ? QStringLiteral("dcc_long") : QStringLiteral("dcc_short"));
    xml.writeEndElement();
    WriteLabels(xml, loco.record, words);
    xml.writeStartElement(QStringLiteral("attributepairs"));
    WritePair(xml, SymbolPair(), loco.record.locoSymbol);
    WritePair(xml, MultiUniPair(), loco.record.multiUni);
    xml.writeEndElement();
    xml.writeEndElement();
}

} // namespace

LocoList ReadJmriRoster(const QString &fileName, const QByteArray &content, const FunctionWords &words)
{
    LocoList list;
    if (content.size() > LargestFile) {
        list.faults.push_back({0, {}, QStringLiteral("die Datei ist größer als 16 MB")});
        return list;
    }
    const XmlFile file = XmlReader(content).read();
    if (!file.fault.isEmpty()) {
        list.faults.push_back({file.line, {}, file.fault});
        return list;
    }
    Translation translation(words, list);
    for (const XmlLoco &loco : file.locos)
        translation.add(Completed(loco, QFileInfo(fileName).absoluteDir()));
    if (list.locos.empty())
        list.faults.push_back({0, {}, QStringLiteral("die Datei enthält keine Lok, die der Handregler haben kann")});
    return list;
}

LocoList ReadJmriFolder(const QString &folder, const FunctionWords &words)
{
    const QDir dir(folder);
    if (const auto roster = ReadSmallFile(dir.filePath(QStringLiteral("roster.xml"))))
        return ReadJmriRoster(dir.filePath(QStringLiteral("roster.xml")), *roster, words);
    LocoList list;
    Translation translation(words, list);
    for (const QString &name : dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name)) {
        const auto content = ReadSmallFile(dir.filePath(name));
        const XmlFile file = content ? XmlReader(*content).read() : XmlFile{{}, QStringLiteral("nicht lesbar"), 0};
        if (!file.fault.isEmpty())
            list.notes += QStringLiteral("nicht übernommen: %1: %2").arg(name, file.fault);
        else
            for (const XmlLoco &loco : file.locos)
                translation.add(loco);
    }
    if (list.locos.empty())
        list.faults.push_back({0, {}, QStringLiteral("der Ordner enthält keine Loks")});
    return list;
}

QByteArray JmriRosterOf(const std::vector<RosterLoco> &locos, const FunctionWords &words)
{
    QByteArray file;
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("roster-config"));
    xml.writeStartElement(QStringLiteral("roster"));
    for (const RosterLoco &loco : locos) {
        if (!IsEmptyName(loco.record.name))
            WriteLoco(xml, loco, words);
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return file;
}

} // namespace hr::roster
