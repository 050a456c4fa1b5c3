#include "ui/common/command.h"

#include "ui/common/connection.h"

bool Command::connected() const
{
    return ok() && HandheldConnected();
}

bool Command::confirmed(const BoxText &question, bool defaultYes) const
{
    return TheAsk().askYesNo(question, defaultYes) && HandheldConnected();
}
