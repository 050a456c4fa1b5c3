// The three small editors of the main window: loco symbol, function symbol, accessory symbol.
#pragma once

#include "handheld/symbol_storage.h"

#include <QGroupBox>
#include <QStringList>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace hr::ui
{

class PictureBox;

/// What one kind of symbol editor is called and how it behaves.
struct SymbolEditorLook {
    SymbolKind kind = SymbolKind::Loco;
    QString frameName;
    QString frameCaption;
    QString numberLabelName;
    QString rangeLabelName;
    QString rangeText;
    QString numberFieldName;
    int highestNumber = 255;  // larger values turn into "??"
    int lastFixedNumber = -1; // numbers up to here can't be written; -1 = all can
    QString pictureName;
    QString readButtonName;
    QString readCaption;
    QString writeButtonName;
    QString writeCaption;
    QString editButtonName;
    QString editCaption;
    QString halvesFrameName;      // empty: the symbol has no halves
    QString halvesName;           // option buttons are named with their index behind it
    QStringList halves;           // captions by index
    bool secondHalfFirst = false; // index 1 is placed before index 0
    int pictureWidth = 18;        // logical pixels
    int pictureHeight = 18;
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
    void pickNumber();
    void showPreview();
    [[nodiscard]] int chosenHalf() const;

    /// What a command of this editor works on.
    struct Shown {
        int number;
        int half;
        Picture picture;
        bool complete;
    };
    [[nodiscard]] Shown shownNow() const;
    [[nodiscard]] bool saveToCatalogue(const Shown &shown, const QString &description) const;

    const SymbolEditorLook &look;
    QLineEdit *numberTxt;
    PictureBox *preview;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *editBut;
    QLabel *doubtLbl; // beside the write button
    QList<QRadioButton *> halves;
    Picture picture;      // what the preview shows and the write button writes
    bool complete = true; // false after a read with a time-out or a damaged answer
};

} // namespace hr::ui
