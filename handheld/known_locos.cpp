#include "handheld/known_locos.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <map>

namespace hr::handheld
{

namespace
{

std::map<int, std::optional<LocoRecord>> locos; // by used address
std::function<void(int)> told;

void Tell(int address)
{
    if (told)
        told(address);
}

} // namespace

void NoteRecord(int address, const LocoRecord &record)
{
    if (IsEmptyName(record.name)) {
        NoteUse(address, false);
        return;
    }
    LocoRecord stored = record;
    stored.name = AsStored(record.name, NameLength);
    locos.insert_or_assign(address, stored);
    Tell(address);
}

void NoteUse(int address, bool used)
{
    if (used)
        locos.try_emplace(address);
    else
        locos.erase(address);
    Tell(address);
}

bool IsKnownLoco(int address)
{
    return locos.contains(address);
}

QString KnownLocoName(int address)
{
    const auto record = KnownRecord(address);
    return record ? WithoutTrailingBlanks(record->name) : QString();
}

std::optional<LocoRecord> KnownRecord(int address)
{
    const auto found = locos.find(address);
    return found != locos.end() ? found->second : std::nullopt;
}

std::vector<int> KnownAddresses()
{
    std::vector<int> addresses;
    addresses.reserve(locos.size());
    for (const auto &[address, record] : locos)
        addresses.push_back(address);
    return addresses;
}

void ForgetKnownLocos()
{
    locos.clear();
    Tell(AllAddresses);
}

void OnKnownLoco(std::function<void(int)> tell)
{
    told = std::move(tell);
}

} // namespace hr::handheld
