#include "ui/menu_bar.h"

#include "program/branding.h"
#include "ui/widgets/window_keys.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <vector>

namespace hr::ui
{

namespace
{

struct Item {
    const char *name;
    QString caption;
    QKeySequence shortcut = {};
};

struct Menu {
    const char *name;
    QString caption;
    Qt::Key key; // with Alt
    std::vector<Item> items;
};

/// The first letter of the product's name.
Qt::Key OptionsKey()
{
    return static_cast<Qt::Key>(TheBranding().productLabel.front().toUpper().unicode());
}

std::vector<Menu> Menus()
{
    return {
        {"datei_menu", QStringLiteral("Datei"), Qt::Key_D,
            {{"datenlesen_menu", QStringLiteral("Daten eines Handreglers sichern")},
                {"datenanzeigen_menu", QStringLiteral("Datensicherung (Lokdatensätze) anzeigen")},
                {"datenschreiben_menu", QStringLiteral("Datensicherung zurückschreiben")},
                {"ende_menu", QStringLiteral("Beenden"), QKeySequence(Qt::CTRL | Qt::Key_Q)}}},
        {"Opt_menu", TheBranding().productLabel, OptionsKey(),
            {{"Opt_VeskaNormalModus", QStringLiteral("zurück in den Bedienmodus")},
                {"Opt_clear_all_loco", QStringLiteral("alle Lokdatensätze löschen")},
                {"optstrich", QStringLiteral("-----------------------------")},
                {"Opt_abschalt", QStringLiteral("Abschaltzeit korrigieren")},
                {"Opt_Fktsym", QStringLiteral("Funktionssymbole korrigieren")}}},
        {"MagFsMenu", QStringLiteral("Mag.Art. und Fahrstr."), Qt::Key_M,
            {{"MagSymMenu", QStringLiteral("Mag.Art. Symbole zuordnen")},
                {"MagListeMenu", QStringLiteral("Mag.Art. Liste ändern")},
                {"FSMenu", QStringLiteral("Fahrstraßendaten ändern")},
                {"StartBildMenu", QStringLiteral("Startbild ändern")}}},
        {"OV_Menu", QStringLiteral("Zentralen"), Qt::Key_Z,
            {{"ZentraleMenu", QStringLiteral("Zentrale auswählen")},
                {"LokDataMenu", TheBranding().lokDataMenuCaption}}},
        {"info_menu", QStringLiteral("Info"), Qt::Key_I,
            {{"zeichen_menu", QStringLiteral("Zeichensatz")}, {"help_menu", QStringLiteral("Hilfe")},
                {"proginfo_menu", QStringLiteral("Programminfo")}}},
        {"werkzeuge_menu", QStringLiteral("Werkzeuge"), Qt::Key_W,
            {{"lokliste_menu", QStringLiteral("Lokliste…")}, {"vergleichen_menu", QStringLiteral("Vergleichen…")},
                {"zuruecknehmen_menu", QStringLiteral("Letzte Änderung zurücknehmen…")},
                {"busmonitor_menu", QStringLiteral("Busmonitor…")},
                {"problembericht_menu", QStringLiteral("Problembericht speichern…")}}},
    };
}

QAction *AddItem(QMenu *menu, const Item &item, const MenuActions &actions)
{
    QAction *action = menu->addAction(item.caption);
    action->setObjectName(QLatin1String(item.name));
    action->setShortcut(item.shortcut);
    action->setMenuRole(QAction::NoRole);
    const auto found = actions.find(action->objectName());
    if (found != actions.end())
        QObject::connect(action, &QAction::triggered, action, found->second);
    return action;
}

} // namespace

MenuItems BuildMenuBar(QMainWindow *window, const MenuActions &actions)
{
    MenuItems items;
    for (const Menu &menu : Menus()) {
        QMenu *widget = window->menuBar()->addMenu(menu.caption);
        widget->setObjectName(QLatin1String(menu.name));
        AltKey(widget, menu.key);
        for (const Item &item : menu.items)
            items[QLatin1String(item.name)] = AddItem(widget, item, actions);
    }
    return items;
}

} // namespace hr::ui
