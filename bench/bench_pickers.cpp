// Prints what opening a symbol picker costs with a full catalogue: the first time, again, and the growth of the
// program's memory over a hundred choices.

#include "program/run_control.h"
#include "shown/catalogue.h"
#include "tests/support/window_world.h"
#include "ui/common/pickers.h"
#include "ui/widgets/grid.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>

namespace hr::tests
{

namespace
{

/// Resident pages of this process; 0 where the system does not tell.
long ResidentPages()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLong() : 0;
}

} // namespace

class BenchPickers : public WindowWorld
{
protected:
    void fillCatalogue()
    {
        const QString path = folder.path() + QStringLiteral("/konf/LokfktSymbole/");
        for (int n = 1; n < 256; ++n) {
            for (const char *marker : {"ON", "OFF"}) {
                const QString from = PicturePath(SymbolKind::Function, 1 + n % 70, 0);
                QFile::copy(from, path + QStringLiteral("%1 Symbol %%2%.bmp").arg(n).arg(QLatin1String(marker)));
            }
        }
        ScanCatalogues();
    }

    /// Milliseconds from the click to the filled window.
    double pick(int number)
    {
        QElapsedTimer timer;
        double opened = 0;
        timer.start();
        events.after(0, [&] {
            opened = static_cast<double>(timer.nsecsElapsed()) / 1e6;
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (widget->objectName() == u"LokFktWin")
                    Q_EMIT widget->findChild<Grid *>()->cellActed(number, 1);
            }
        });
        EXPECT_EQ(PickSymbol(SymbolKind::Function, number), number);
        return opened;
    }
};

TEST_F(BenchPickers, OpenAndChoose)
{
    fillCatalogue();
    std::printf("picker, first opening  %6.1f ms\n", pick(200));
    std::printf("picker, second opening %6.1f ms\n", pick(100));
    const long before = ResidentPages();
    for (int i = 0; i < 100; ++i)
        pick(i);
    std::printf("memory after 100 picks %+ld pages\n", ResidentPages() - before);
}

} // namespace hr::tests
