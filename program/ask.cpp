#include "program/ask.h"

#include <QDir>

namespace hr::program
{

namespace
{
Ask *installed = nullptr;
bool unwritableReported = false;
} // namespace

void InstallAsk(Ask *ask)
{
    installed = ask;
}

Ask &TheAsk()
{
    Q_ASSERT(installed != nullptr);
    return *installed;
}

void ReportFileUnwritable(const QString &fileName)
{
    TheAsk().showBox(
        {QStringLiteral("Die Datei %1 kann nicht geschrieben werden!").arg(QDir::toNativeSeparators(fileName)),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
}

void ReportUnwritable(const QString &relative)
{
    if (unwritableReported)
        return;
    unwritableReported = true;
    TheAsk().showBox({QStringLiteral("Die Datei %1 kann nicht geschrieben werden!\r"
                                     "Das Programm arbeitet weiter, kann sich hier aber nichts merken.")
                          .arg(relative),
        QStringLiteral("Fehler!"), BoxIcon::Critical});
}

void ResetAsk()
{
    unwritableReported = false;
}

} // namespace hr::program
