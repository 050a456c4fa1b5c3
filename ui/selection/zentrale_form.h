// "Auswahl der Zentrale": the user picks port and interface kind.
#pragma once

#include "ui/widgets/leavable_window.h"

#include <array>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

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
    /// Cancel: nothing is taken over, also while OK still works.
    void leave() override;

private:
    QWidget *makeOptions();
    void offerPorts();
    [[nodiscard]] int chosenKind() const;
    void accept();
    void takeSettings();
    bool releasePort();
    void showWorking(bool works);

    QLineEdit *comPortNrTxt;
    std::array<QRadioButton *, 3> iopt{};
    QLabel *hint;
    QPushButton *okButton;
    bool working = false;   // OK sends a found handheld back before it takes anything over
    bool cancelled = false; // meanwhile
};
