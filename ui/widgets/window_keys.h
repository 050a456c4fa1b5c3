// Keys of windows whose captions may not show them: Alt with a letter, Ctrl+F, typing in lists.
#pragma once

#include "platform/rooms.h"

#include <QList>

class QAbstractItemView;
class QLineEdit;
class QMenu;
class QRadioButton;
class QWidget;

namespace hr::ui
{

/// Alt with a letter or digit presses a button or gives another control the focus, within the control's window. The
/// control's text stays as it is.
void AltKey(QWidget *target, Qt::Key key);

/// Alt with a letter opens a menu of a menu bar; in the open menu a letter goes to the next item that begins with it
/// and chooses it where it is the only one.
void AltKey(QMenu *menu, Qt::Key key);

/// Tab enters a group of option buttons at the chosen one, while none is chosen at the first one.
void TabToChosen(const QList<QRadioButton *> &group);

/// Tab goes through the controls in this order.
void TabInOrder(const QList<QWidget *> &controls);

/// Ctrl+F in the list's window goes to the search field; so does a letter or digit that is typed on the list.
/// Down in the field leads to the list.
void SearchIn(QLineEdit *field, QAbstractItemView *list);

} // namespace hr::ui
