// The bus monitor: every message on the bus with its meaning, while the rest of the program works. It listens from its opening
// until it is closed, and sends nothing.
#pragma once

#include "platform/events.h"
#include "ui/busmonitor/trace_table.h"
#include "ui/widgets/leavable_window.h"

#include <memory>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace hr::ui
{

class BusMonitorWindow : public LeavableWindow
{
    Q_OBJECT

public:
    BusMonitorWindow();
    ~BusMonitorWindow() override;
    BusMonitorWindow(const BusMonitorWindow &) = delete;
    BusMonitorWindow &operator=(const BusMonitorWindow &) = delete;

    /// Shows the window and begins to listen; the port is opened where it can be.
    void listen();

protected:
    void leave() override;

private:
    void buildTable();
    QWidget *buildFilters();
    QWidget *buildButtons();
    void takeNew();
    void filterChanged();
    void pauseChanged();
    void showState();
    void copy();
    void save();
    void openTrace();
    void stopListening();
    void clear();

    QLineEdit *filterTxt;
    QComboBox *whoseBox;
    QLineEdit *opcodeTxt;
    QCheckBox *wrongChk;
    QTableView *table;
    TraceTable *model;
    QPushButton *pauseBut;
    QCheckBox *followChk;
    QLabel *stateLbl;

    std::unique_ptr<BusTrace> trace;
    std::vector<TraceRow> waiting; // heard and not shown yet
    std::optional<Events::TimerId> looks;
    QString keptIn; // the file that every message goes into
    bool paused = false;
};

/// Opens the bus monitor, or brings it forward.
void OpenBusMonitor();
void ResetBusMonitor();

} // namespace hr::ui
