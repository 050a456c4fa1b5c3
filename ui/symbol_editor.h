// The three small editors of the main window: loco symbol, function symbol, accessory symbol.
#pragma once

#include "handheld/symbol_storage.h"

#include <QGroupBox>
#include <QStringList>

#include <vector>

class PictureBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

/// What one kind of symbol editor is called and how it behaves.
struct SymbolEditorLook {
    SymbolKind kind;
    QString frameName;
    QString frameCaption;
    QString numberLabelName;
    QString rangeLabelName;
    QString rangeText;
    QString numberFieldName;
    int highestNumber;   // larger values turn into "??"
    int lastFixedNumber; // numbers up to here can't be written; -1 = all can
    QString pictureName;
    QString readButtonName;
    QString readCaption;
    QString writeButtonName;
    QString writeCaption;
    QString editButtonName;
    QString editCaption;
    QString halvesFrameName; // empty: the symbol has no halves
    QString halvesName;      // option buttons are named with their index behind it
    QStringList halves;      // captions by index
    bool secondHalfFirst;    // index 1 is placed before index 0
    int pictureWidth;        // logical pixels
    int pictureHeight;
    QString readText; // progress texts
    QString writeText;
};

const SymbolEditorLook &LokSymbolLook();
const SymbolEditorLook &FktSymbolLook();
const SymbolEditorLook &MagSymbolLook();

class SymbolEditor : public QGroupBox
{
    Q_OBJECT

public:
    SymbolEditor(const SymbolEditorLook &look, QWidget *parent);

protected:
    /// Double-click and F4 in the number field open the picker.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildNumberRow();
    QWidget *buildHalves();
    void buildLayout();
    void orderTabs();
    void connectControls();
    void numberChanged();
    void readSymbol();
    void editSymbol();
    void writeSymbol();
    bool saveToCatalogue(int number, int half, const QString &description);
    void pickNumber();
    void showPreview();
    void layPicture() const;
    void keepPicture();
    [[nodiscard]] int chosenHalf() const;

    const SymbolEditorLook &look;
    QLineEdit *numberTxt;
    PictureBox *preview;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *editBut;
    QList<QRadioButton *> halves;
    std::vector<int> picture; // this editor's picture, as it lies in SpiBuf from index 4 on
};
