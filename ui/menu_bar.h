// The menu bar of the main window: captions, names and order in one table.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <functional>
#include <map>

class QAction;
class QMainWindow;

namespace hr::ui
{

/// What each item does, by the item's name; items without an entry do nothing.
using MenuActions = std::map<QString, std::function<void()>>;

/// The items by their names.
using MenuItems = std::map<QString, QAction *>;

/// Builds the menus into the window. Every item and menu carries its agreed name as objectName.
MenuItems BuildMenuBar(QMainWindow *window, const MenuActions &actions);

} // namespace hr::ui
