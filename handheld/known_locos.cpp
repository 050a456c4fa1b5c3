#include "handheld/known_locos.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <map>

namespace hr::handheld
{

namespace
{
std::map<int, QString> names; // of the used addresses; empty = not known
} // namespace

void NoteRecord(int address, const LocoRecord &record)
{
    NoteUse(address, !IsEmptyName(record.name));
    if (IsKnownLoco(address))
        names.at(address) = WithoutTrailingBlanks(AsStored(record.name, NameLength));
}

void NoteUse(int address, bool used)
{
    if (used)
        names.try_emplace(address);
    else
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

} // namespace hr::handheld
