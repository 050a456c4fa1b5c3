// "Lokdatensatz ändern:": shows, reads, writes and deletes one loco record.
#pragma once

#include <QGroupBox>

class Grid;
class PictureBox;
class QCheckBox;
class QLineEdit;
class QHBoxLayout;

class LocoEditor : public QGroupBox
{
    Q_OBJECT

public:
    explicit LocoEditor(QWidget *parent);

    /// Shows the current loco record.
    void showRecord();

Q_SIGNALS:
    /// The access code was typed into the address field.
    void startImageUnlocked();

private:
    void buildGrid();
    QWidget *buildGridWithHeads();
    QHBoxLayout *buildButtons();
    void buildLayout();
    void connectControls();
    void addressChanged();
    void clearShownRecord();
    void showName();
    void showLocoSymbol();
    void showFunctionSymbols(int row);
    void showFunctions();
    void readRecord();
    void writeRecord();
    void deleteRecord();
    void toggleMomentary(int row);
    void actOnFunction(int row, int column);
    void pickLocoSymbol();

    QLineEdit *adrTxt;
    QLineEdit *loknameTxt;
    PictureBox *lokSymPic;
    Grid *fktTab;
    QCheckBox *multiUniChk;
};
