#include "handheld/known_locos.h"

#include "platform/text.h"

#include <map>

namespace
{
std::map<int, QString> names; // of the used addresses; empty = not known
} // namespace

void NoteLoco(int address, const QString &name)
{
    QString &known = names[address];
    if (!name.isEmpty())
        known = WithoutTrailingBlanks(name);
}

void NoteNoLoco(int address)
{
    names.erase(address);
}

bool IsKnownLoco(int address)
{
    return names.contains(address);
}

QString KnownLocoName(int address)
{
    const auto found = names.find(address);
    return found != names.end() ? found->second : QString();
}

void ForgetKnownLocos()
{
    names.clear();
}
