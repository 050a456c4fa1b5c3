// Where windows appear and how large: beside what was acted on, never off the screen, as large as the user made them.
#pragma once

#include "platform/rooms.h"

#include <QPoint>
#include <QRect>

class QScreen;
class QWidget;

namespace hr::ui
{

/// What the user acted on last, on the screen in logical pixels: the current cell of a grid, or the control that has the
/// focus. Empty while no window of the program is in front.
QRect ActedPlace();

/// The screen that holds a place; the first one for a place beyond all screens.
QScreen *ScreenOf(const QRect &place);

/// The largest inside of a window on a screen: its frame and a task bar need room too.
QSize RoomForWindow(const QScreen &screen);

/// Where the frame of a window with this inside goes so that it does not cover the place: right of it, else left, below,
/// above; where there is no room at all, at the right edge of the screen. It never leaves the screen (all in logical
/// pixels, the screen without task bars).
QPoint PositionBeside(QSize inside, const QRect &place, const QRect &screen);

/// Where the frame of a window with this inside goes to be in the middle of the screen; its title is always on it.
QPoint PositionInMiddle(QSize inside, const QRect &screen);

/// From now on sizes of windows are kept in this file, between runs too; an empty name ends it. A file that cannot be
/// read or written means that windows open with the sizes that they were given.
void KeepWindowSizesIn(const QString &iniFile);

/// Gives a window the size that was kept under its objectName, bounded to its screen. To be called before it is shown.
void RestoreSize(QWidget &window);

/// Keeps the size of a window (its normal one, when it is maximised).
void KeepSize(const QWidget &window);

} // namespace hr::ui
