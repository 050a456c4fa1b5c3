// The menu bar of the main window: captions, names and order in one table.
#pragma once

#include <QString>

#include <functional>
#include <map>

class QAction;
class QMainWindow;

/// What each item does, by the item's name; items without an entry do nothing.
using MenuActions = std::map<QString, std::function<void()>>;

/// Builds the menus into the window. Every item and menu carries its agreed name as objectName.
void BuildMenuBar(QMainWindow *window, const MenuActions &actions);
