// "Auswahl der Zentrale": the user picks port and interface kind.
#pragma once

#include <QWidget>

#include <array>

class QLineEdit;
class QRadioButton;

class ZentraleForm : public QWidget
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
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeOptions();
    void offerPorts();
    [[nodiscard]] int chosenKind() const;
    void accept();
    void takeSettings();
    void cancel();

    QLineEdit *comPortNrTxt;
    std::array<QRadioButton *, 3> iopt{};
};
