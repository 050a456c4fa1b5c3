#include "ui/widgets/crisp_picture.h"
#include "ui/widgets/leavable_window.h"
#include "ui/widgets/window_place.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hr::tests
{

TEST(Looks, PicturesAreCrispAtEveryScale)
{
    QImage squares(14, 14, QImage::Format_RGB32); // black and white by turns
    for (int i = 0; i < 14 * 14; ++i)
        squares.setPixelColor(i % 14, i / 14, (i % 14 + i / 14) % 2 == 0 ? Qt::black : Qt::white);
    for (const auto &[scale, factor, dark] : {std::tuple{1.0, 1, false}, {1.25, 1, true}, {1.5, 2, false},
             {1.5, 2, true}, {2.0, 2, true}, {3.0, 3, false}}) {
        QImage screen((QSizeF(60, 60) * scale).toSize(), QImage::Format_RGB32);
        screen.setDevicePixelRatio(scale);
        screen.fill(Qt::gray);
        QPainter painter(&screen);
        painter.translate(13, 7); // between device pixels at a broken scale
        const QPalette palette(dark ? QColor(Qt::black) : QColor(Qt::white));
        DrawCrisp(painter, QRect(3, 5, 26, 19), QPixmap::fromImage(squares), palette);
        painter.end();
        QPoint first(-1, -1); // the black corner of the picture
        QSet<QRgb> colours;
        for (int i = 0; i < screen.width() * screen.height(); ++i) {
            const QPoint at(i % screen.width(), i / screen.width());
            colours.insert(screen.pixel(at));
            if (first.x() < 0 && screen.pixel(at) == qRgb(0, 0, 0))
                first = at;
        }
        EXPECT_EQ(colours.size(), 3) << "nothing is blurred";
        EXPECT_EQ(screen.pixel(first - QPoint(1, 0)) == qRgb(255, 255, 255), dark) << "white margin";
        for (int x = 0; x < 14 * factor; ++x) {
            for (int y = 0; y < 14 * factor; ++y)
                ASSERT_EQ(screen.pixel(first + QPoint(x, y)), squares.pixel(x / factor, y / factor)) << scale;
        }
    }
}

TEST(Looks, WindowsAppearBesideAPlaceAndNeverLeaveTheScreen)
{
    const QRect screen(100, 30, 1366, 738); // the second of two, below a task bar
    for (const QSize inside : {QSize(300, 600), QSize(900, 300), QSize(1340, 690)}) {
        for (int x = screen.left() - 20; x < screen.right(); x += 90) {
            for (int y = screen.top(); y < screen.bottom(); y += 90) {
                const QRect place(x, y, 60, 24);
                const QRect window(PositionBeside(inside, place, screen), inside);
                EXPECT_TRUE(screen.contains(window)) << x << ' ' << y;
                EXPECT_TRUE(inside.width() > 1000 || !window.intersects(place)) << x << ' ' << y;
            }
        }
    }
}

TEST(Looks, SizesOfWindowsAreKeptOnlyWhenTheUserChangedThem)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Einstellungen.ini"));
    const auto sizeAfter = [](QSize chosen) {
        LeavableWindow window;
        window.setObjectName(QStringLiteral("Fenster"));
        window.resize(400, 300);
        window.present();
        const QSize shown = window.size();
        if (!chosen.isEmpty())
            window.resize(chosen);
        window.close();
        return shown;
    };
    EXPECT_EQ(sizeAfter({500, 350}), QSize(400, 300)) << "nothing is kept";
    KeepWindowSizesIn(file);
    EXPECT_EQ(sizeAfter({}), QSize(400, 300));
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(sizeAfter({520, 360}), QSize(400, 300));
    EXPECT_EQ(sizeAfter({4000, 360}), QSize(520, 360));
    const QSize limited = sizeAfter({});
    EXPECT_LT(limited.width(), QGuiApplication::primaryScreen()->size().width());
    EXPECT_EQ(limited.height(), 360);
    KeepWindowSizesIn(QString());
}

} // namespace hr::tests
