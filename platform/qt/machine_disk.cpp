#include "platform/qt/machine_disk.h"

#include <QFile>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace hr::platform
{

#ifdef _WIN32

bool MachineDisk::flush(QFileDevice &file)
{
    return FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()))) != FALSE;
}

bool MachineDisk::flushFolder(const QString &)
{
    return true; // its journal keeps names in order
}

#else

bool MachineDisk::flush(QFileDevice &file)
{
    return fsync(file.handle()) == 0 || errno == EINVAL; // a file system that cannot do it is none that fails
}

bool MachineDisk::flushFolder(const QString &folder)
{
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool flushed = fsync(descriptor) == 0 || errno == EINVAL;
    close(descriptor);
    return flushed;
}

#endif

} // namespace hr::platform
