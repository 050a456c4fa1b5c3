#include "ui/lokliste/lok_list_commands.h"

#include "handheld/known_locos.h"
#include "ui/common/command.h"
#include "ui/lokliste/lok_list_window.h"

#include <memory>

namespace hr::ui
{

namespace
{
std::unique_ptr<LokListWindow> lokListe;
} // namespace

void OpenLokListe()
{
    const Command command;
    if (!command.ok())
        return;
    if (!lokListe)
        lokListe = std::make_unique<LokListWindow>();
    lokListe->open();
}

void FollowKnownLocos(std::function<void(int)> others)
{
    OnKnownLoco([others = std::move(others)](int address) {
        others(address);
        if (lokListe)
            lokListe->hear(address);
    });
}

bool LokListeUnsaved()
{
    return lokListe && lokListe->isUnsaved();
}

void ResetLokListe()
{
    OnKnownLoco(nullptr);
    lokListe.reset();
}

} // namespace hr::ui
