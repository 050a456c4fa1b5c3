// "Auswahl der Zentrale": the user picks port and interface kind.
#pragma once

#include "ui/widgets/leavable_window.h"

#include <array>

class QCheckBox;
class QCompleter;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace hr::ui
{

class ZentraleForm : public LeavableWindow
{
    Q_OBJECT

public:
    ZentraleForm();

    /// Shows the window with the present settings.
    void load();

Q_SIGNALS:
    /// OK was pressed: the menu item of the command-station download depends on the kind.
    void interfaceChosen();

protected:
    /// Down in the port field opens the list of ports.
    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Cancel: nothing is taken over, also while OK still works.
    void leave() override;

private:
    QWidget *makeOptions();
    QWidget *makePortRow();
    void portChanged();
    void offerPorts();
    void showPorts();
    [[nodiscard]] static QString likelyPort();
    [[nodiscard]] int chosenKind() const;
    void accept();
    void takeSettings();
    bool releasePort();
    void showWorking(bool works);

    QLineEdit *comPortNrTxt;
    std::array<QRadioButton *, 3> iopt{};
    QCompleter *portList = nullptr; // found ports, made anew each time it is opened
    QCheckBox *schnellChk;
    QLabel *reasonLbl;
    QLabel *hint;
    QPushButton *okButton;
    QPushButton *cancelButton;
    bool working = false;   // OK sends a found handheld back before it takes anything over
    bool cancelled = false; // meanwhile
};

} // namespace hr::ui
