// The machine's real disk: what is flushed is on it.
#pragma once

#include "platform/disk.h"

namespace hr::platform
{

class MachineDisk : public Disk
{
public:
    [[nodiscard]] bool flush(QFileDevice &file) override;

    /// On systems that keep the names of a folder by themselves there is nothing to do.
    [[nodiscard]] bool flushFolder(const QString &folder) override;
};

} // namespace hr::platform
