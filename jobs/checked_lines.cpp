#include "jobs/checked_lines.h"

#include <QCryptographicHash>

namespace hr::jobs
{

namespace
{

constexpr qsizetype SumDigits = 8;

QByteArray SumOf(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex().left(SumDigits);
}

} // namespace

QByteArray CheckedLine(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return bytes + ' ' + SumOf(bytes) + '\n';
}

CheckedLines ReadCheckedLines(const QByteArray &bytes)
{
    CheckedLines lines;
    qsizetype first = 0;
    for (qsizetype end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', first)) {
        const QByteArray line = bytes.mid(first, end - first);
        first = end + 1;
        const QByteArray text = line.left(line.size() - SumDigits - 1);
        if (line.size() > SumDigits && line == text + ' ' + SumOf(text))
            lines.texts += QString::fromUtf8(text);
        else
            lines.spoilt = true;
    }
    return lines;
}

} // namespace hr::jobs
