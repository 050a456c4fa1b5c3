// The disk, as far as it matters what is on it when the power fails: behind one small interface, so that a test can count,
// fail and lose what was not flushed.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QString>

class QFileDevice;
class QSaveFile;

namespace hr::platform
{

/// Leaves it to the system when what was written comes to the disk.
class Disk
{
public:
    virtual ~Disk() = default;

    /// Writes all bytes to an open file and hands them to the system. False when not all of them went, as on a full disk.
    [[nodiscard]] virtual bool write(QFileDevice &file, const QByteArray &bytes);

    /// Lets a whole new file take the place of the old one.
    [[nodiscard]] virtual bool replace(QSaveFile &file);

    virtual bool remove(const QString &path);
    [[nodiscard]] virtual bool rename(const QString &from, const QString &to);

    /// From here on what was written to the file, and the names in the folder, outlive a power failure.
    [[nodiscard]] virtual bool flush(QFileDevice &file);
    [[nodiscard]] virtual bool flushFolder(const QString &folder);
};

/// Installs another disk than the one above (main(), or a test); it stays owned by the caller. Null: that one again.
void InstallDisk(Disk *disk);
Disk &TheDisk();

} // namespace hr::platform
