#include "roster/loco_csv.h"

#include "platform/text.h"

#include <QStringList>

namespace
{

QString Quoted(const QString &text)
{
    QString doubled = text;
    return u'"' + doubled.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString Heading()
{
    QStringList fields;
    for (int column = 0; column < FrontColumns; ++column)
        fields += FrontCaption(column);
    for (int f = 0; f < FunctionCount; ++f) {
        fields += QStringLiteral("f%1 Symbol").arg(f);
        fields += QStringLiteral("f%1 Tast").arg(f);
    }
    return fields.join(u';');
}

QString Line(const RosterLoco &loco)
{
    const LocoRecord &record = loco.record;
    QStringList fields{QString::number(loco.address), Quoted(ShownName(record)), QString::number(record.locoSymbol),
        QString::number(record.multiUni)};
    for (size_t f = 0; f < FunctionCount; ++f)
        fields << QString::number(record.symbols.at(f)) << QString::number(record.modes.at(f));
    return fields.join(u';');
}

} // namespace

std::vector<RosterLoco> LocosIn(const DdsContent &content)
{
    std::vector<RosterLoco> locos;
    for (const DdsRecord &record : content.records) {
        if (record.id.kind == KindLoco)
            locos.push_back({record.id.number, std::get<LocoRecord>(UnpackRecord(record))});
    }
    return locos;
}

QString ShownName(const LocoRecord &record)
{
    return IsEmptyName(record.name) ? LeerName() : WithoutTrailingBlanks(record.name);
}

QString FrontCaption(int column)
{
    static const std::array<QString, FrontColumns> captions{
        QStringLiteral("Adresse"), QStringLiteral("Name"), QStringLiteral("Symbol"), QStringLiteral("ident. Sym.")};
    return captions.at(static_cast<size_t>(column));
}

QByteArray CsvOf(const std::vector<RosterLoco> &locos)
{
    QString text = QChar(QChar::ByteOrderMark) + Heading() + u"\r\n";
    for (const RosterLoco &loco : locos)
        text += Line(loco) + u"\r\n";
    return text.toUtf8();
}
