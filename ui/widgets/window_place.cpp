#include "ui/widgets/window_place.h"

#include "ui/widgets/grid.h"

#include <QApplication>
#include <QScreen>
#include <QSettings>

#include <array>

namespace hr::ui
{

namespace
{

QString sizesFile; // empty: nothing is kept

constexpr int Gap = 8;                // between a place and the window beside it
constexpr QSize FrameSize(16, 44);    // of a window, not known before it is shown
constexpr QSize AroundWindow(20, 80); // its frame, and a task bar where the system does not tell of it

QString KeyOf(const QWidget &window)
{
    return QStringLiteral("Fenster/") + window.objectName();
}

} // namespace

QRect ActedPlace()
{
    QWidget *control = QApplication::focusWidget();
    if (control == nullptr)
        return {};
    QRect part = control->rect();
    if (const auto *grid = qobject_cast<Grid *>(control); grid != nullptr && grid->currentIndex().isValid()) {
        control = grid->viewport();
        part = grid->visualRect(grid->currentIndex()).intersected(control->rect());
    }
    return {control->mapToGlobal(part.topLeft()), part.size()};
}

QScreen *ScreenOf(const QRect &place)
{
    QScreen *screen = QGuiApplication::screenAt(place.center());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

QSize RoomForWindow(const QScreen &screen)
{
    return screen.availableSize() - AroundWindow;
}

QPoint PositionBeside(QSize inside, const QRect &place, const QRect &screen)
{
    const QSize size = inside + FrameSize;
    const QPoint last(screen.left() + screen.width() - size.width(), screen.top() + screen.height() - size.height());
    const auto onScreen = [&](QPoint position) {
        return QPoint(
            qMax(screen.left(), qMin(position.x(), last.x())), qMax(screen.top(), qMin(position.y(), last.y())));
    };
    const int across = place.center().x() - size.width() / 2;
    const int along = place.center().y() - size.height() / 2;
    const std::array<QPoint, 4> wishes{QPoint(place.right() + Gap, along),
        QPoint(place.left() - Gap - size.width(), along), QPoint(across, place.bottom() + Gap),
        QPoint(across, place.top() - Gap - size.height())};
    for (const QPoint &wish : wishes) {
        if (!QRect(onScreen(wish), size).intersects(place))
            return onScreen(wish);
    }
    return onScreen({last.x(), along});
}

QPoint PositionInMiddle(QSize inside, const QRect &screen)
{
    const QSize left = (screen.size() - inside - FrameSize).expandedTo(QSize(0, 0));
    return screen.topLeft() + QPoint(left.width() / 2, left.height() / 2);
}

void KeepWindowSizesIn(const QString &iniFile)
{
    sizesFile = iniFile;
}

void RestoreSize(QWidget &window)
{
    if (sizesFile.isEmpty())
        return;
    const QSize kept = QSettings(sizesFile, QSettings::IniFormat).value(KeyOf(window)).toSize();
    if (!kept.isEmpty())
        window.resize(kept.boundedTo(RoomForWindow(*window.screen())));
}

void KeepSize(const QWidget &window)
{
    if (!sizesFile.isEmpty() && !window.objectName().isEmpty() && window.minimumSize() != window.maximumSize()) {
        const QSize size = window.isMaximized() ? window.normalGeometry().size() : window.size();
        QSettings(sizesFile, QSettings::IniFormat).setValue(KeyOf(window), size);
    }
}

} // namespace hr::ui
