#include "sim/pty/pty.h"

#include <QFile>

#include <array>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace hr::sim
{
namespace
{

void MakeRaw(int descriptor)
{
    termios mode{};
    tcgetattr(descriptor, &mode);
    cfmakeraw(&mode);
    tcsetattr(descriptor, TCSANOW, &mode);
}

} // namespace

bool Pty::open()
{
    close();
    master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
        return false;
    clientPath = QFile::decodeName(ptsname(master));
    client = ::open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (client < 0)
        return false;
    MakeRaw(client);
    notifier = std::make_unique<QSocketNotifier>(master, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { readAll(); });
    return true;
}

// It may be called from readAll(), in the notifier's own signal: the notifier is deleted later.
void Pty::close()
{
    if (notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater();
    }
    if (client >= 0)
        ::close(client);
    if (master >= 0)
        ::close(master);
    client = master = -1;
    clientPath.clear();
}

void Pty::write(const Bytes &bytes) const
{
    if (master >= 0) [[maybe_unused]]
        const auto count = ::write(master, bytes.data(), bytes.size());
}

void Pty::readAll() const
{
    std::array<quint8, 512> block{};
    Bytes bytes;
    for (auto count = ::read(master, block.data(), block.size()); count > 0;
         count = ::read(master, block.data(), block.size()))
        bytes.insert(bytes.end(), block.begin(), block.begin() + count);
    if (!bytes.empty() && onBytes)
        onBytes(bytes);
}

} // namespace hr::sim
