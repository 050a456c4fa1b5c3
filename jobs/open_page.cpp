#include "jobs/open_page.h"

#include "platform/disk.h"
#include "platform/files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

namespace hr::jobs
{

namespace
{

QString Folder()
{
    return KonfPath(QStringLiteral("\\konf\\Sicherungen"));
}

/// Begins the names of a handheld's pages.
QString Front(const QString &handheld)
{
    constexpr qsizetype digits = 8;
    const QByteArray sum = QCryptographicHash::hash(handheld.toUtf8(), QCryptographicHash::Md5).toHex();
    return QStringLiteral("seite-") + QString::fromLatin1(sum.left(digits)) + u'-';
}

QString NameOf(const QString &handheld, int address)
{
    constexpr int hexDigits = 6;
    return Folder() + u'/' + Front(handheld) + QString::number(address, 16).rightJustified(hexDigits, u'0')
        + QStringLiteral(".offen");
}

} // namespace

bool RememberPage(const SavedState &state, int address)
{
    MakeFolder(Folder());
    const QString name = NameOf(state.handheld, address);
    const QByteArray file = SavedStateFile(state);
    return ReplaceFile(name, file) && ReadWholeFile(name) == file;
}

void ForgetPage(const QString &handheld, int address)
{
    TheDisk().remove(NameOf(handheld, address));
}

void ForgetPage(const OpenPage &page)
{
    TheDisk().remove(page.fileName);
}

void SettleForgottenPages()
{
    static_cast<void>(TheDisk().flushFolder(Folder())); // one that comes back is looked at, and is as it should be
}

std::vector<OpenPage> OpenPages(const QString &handheld)
{
    std::vector<OpenPage> pages;
    const QStringList names =
        QDir(Folder()).entryList({Front(handheld) + QStringLiteral("*.offen")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        const QString path = Folder() + u'/' + name;
        const ReadState read = ReadSavedState(ReadWholeFile(path).value_or(QByteArray()));
        pages.push_back({path, read.state, read.sound, read.foreign});
    }
    return pages;
}

} // namespace hr::jobs
