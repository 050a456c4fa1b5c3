#include "cli/output.h"

#include "program/run_control.h"

#include <cerrno>
#include <cstdio>

namespace hr::cli
{

namespace
{
bool sound = true;
bool readerGone = false;
} // namespace

void PrintBytes(const QByteArray &bytes)
{
    const auto size = static_cast<size_t>(bytes.size());
    if (!readerGone && std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return;
    if (errno != EPIPE) { // who reads no further has said so
        if (sound)
            Tell(QStringLiteral("Die Standardausgabe nimmt nichts mehr an."));
        sound = false;
    }
    readerGone = true;
    RequestEnd();
}

void PrintLine(const QString &line)
{
    PrintBytes(line.toUtf8() + '\n');
}

void PrintJson(const QJsonDocument &document)
{
    PrintBytes(document.toJson(QJsonDocument::Indented));
}

bool OutputSound()
{
    return sound;
}

bool ReaderGone()
{
    return readerGone;
}

void Tell(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

} // namespace hr::cli
