// Small helpers with which the windows build their controls: every control gets its agreed name.
#pragma once

#include "platform/rooms.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>

class QAction;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QUndoStack;
class QWidget;

namespace hr::ui
{

class PictureBox;

QLabel *NamedLabel(const QString &name, const QString &caption, QWidget *parent);
QPushButton *NamedButton(const QString &name, const QString &caption, QWidget *parent);

QCheckBox *NamedCheck(const QString &name, const QString &caption, QWidget *parent);

/// A thin horizontal line.
QFrame *NamedLine(const QString &name, QWidget *parent);

/// A text field that screen readers announce by its label.
QLineEdit *NamedField(const QString &name, const QString &accessibleName, QWidget *parent);

/// A picture box of a fixed size in logical pixels: a framed white area that shows one picture.
PictureBox *NamedPicture(const QString &name, const QString &accessibleName, int width, int height, QWidget *parent);

/// A command of a widget, with its key; it stands in the widget's context menu where that shows actions.
QAction *NamedAction(const QString &name, const QString &caption, const QKeySequence &key, QWidget *owner,
    const std::function<void()> &work);

/// "Rückgängig" and "Wiederholen" (UndoAction, RedoAction) with their keys, valid in the owner's window; grey while there is
/// no such step.
void AddUndoActions(
    QWidget *owner, const QUndoStack &steps, const std::function<void()> &undo, const std::function<void()> &redo);

/// A paste command is grey while the clipboard holds no text.
void FollowClipboard(QAction *paste);

/// Marks a field as wrong and names the fault to those who point at it or have it read aloud; an empty fault takes
/// the mark away.
void MarkField(QLineEdit *field, const QString &fault);

/// A line that says that what is shown was not read completely; hidden until it is needed.
QLabel *NamedDoubtLabel(const QString &name, QWidget *parent);

/// The same for what the user has changed and not written.
QLabel *NamedChangedLabel(const QString &name, QWidget *parent);

/// An empty line for a remark that comes and goes: it keeps its height, and never makes its window wider.
QLabel *NamedRemark(const QString &name, QWidget *parent);

/// Buttons of one group get the width of the widest.
void SameWidth(const QList<QPushButton *> &buttons);

/// Keeps a control's place while it is hidden, so that nothing moves when it appears.
void KeepPlace(QWidget *control);

} // namespace hr::ui
