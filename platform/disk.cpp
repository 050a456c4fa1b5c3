#include "platform/disk.h"

#include <QFile>
#include <QSaveFile>

namespace hr::platform
{

namespace
{
Disk *installed = nullptr;
} // namespace

bool Disk::write(QFileDevice &file, const QByteArray &bytes)
{
    // What is small stays in the program until it is flushed: only then a full disk is noticed.
    return file.write(bytes) == bytes.size() && file.flush();
}

bool Disk::replace(QSaveFile &file)
{
    return file.commit();
}

bool Disk::remove(const QString &path)
{
    return QFile::remove(path);
}

bool Disk::rename(const QString &from, const QString &to)
{
    return QFile::rename(from, to);
}

bool Disk::flush(QFileDevice &)
{
    return true;
}

bool Disk::flushFolder(const QString &)
{
    return true;
}

void InstallDisk(Disk *disk)
{
    installed = disk;
}

Disk &TheDisk()
{
    static Disk plain;
    return installed != nullptr ? *installed : plain;
}

} // namespace hr::platform
