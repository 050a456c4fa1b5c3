#include "ui/common/command.h"

#include "ui/common/careful_job.h"
#include "ui/common/connection.h"

namespace hr::ui
{

Command::~Command()
{
    TellConnectionChange();
}

bool Command::connected() const
{
    return ok() && HandheldConnected();
}

bool Command::mayWrite() const
{
    return connected() && WaitingPagesMended(*this);
}

bool Command::confirmed(const BoxText &question, bool defaultYes) const
{
    return TheAsk().askYesNo(question, defaultYes) && HandheldConnected();
}

bool Command::mayWriteDoubtful(const QString &what) const
{
    return confirmed(
        {QStringLiteral("Beim Lesen hat der Handregler nicht immer richtig geantwortet;\r%1 ist vielleicht "
                        "unvollständig. Soll trotzdem geschrieben werden?")
                .arg(what),
            QStringLiteral("Achtung!"), BoxIcon::Critical},
        false);
}

} // namespace hr::ui
