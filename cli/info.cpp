#include "cli/output.h"
#include "cli/service.h"
#include "program/run_control.h"

#include <QJsonObject>

namespace hr::cli
{

namespace
{

Exit Run(const Call &call)
{
    const Service service(call);
    if (!service.ready())
        return service.failure();
    if (BoxesAreSilent())
        return Exit::Stopped; // while it was asked
    const HandheldInfo &info = service.handheld();
    const QList<std::pair<QString, QString>> rows{{QStringLiteral("version"), info.version},
        {QStringLiteral("datum"), info.date}, {QStringLiteral("typ"), info.type}, {QStringLiteral("art"), info.kind}};
    QJsonObject object;
    for (const auto &[key, value] : rows) {
        object.insert(key, value);
        if (!call.options.json)
            PrintLine(key.left(1).toUpper() + key.mid(1) + QStringLiteral(": ") + value);
    }
    if (call.options.json)
        PrintJson(QJsonDocument(object));
    return info.version.isEmpty() ? Exit::Incomplete : Exit::Done;
}

} // namespace

Command InfoCommand()
{
    return {QStringLiteral("info"), {}, QStringLiteral("findet den Handregler: Version, Datum, Typ, Art"), {}, Run};
}

} // namespace hr::cli
