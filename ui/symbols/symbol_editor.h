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

    /// The symbol's name for a question when its picture was drawn and not written; empty when it was not.
    [[nodiscard]] QString unwritten() const;

    /// Editors that stand below each other have their buttons in the same columns.
    static void AlignButtons(const QList<SymbolEditor *> &editors);

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
    void showPicture();
    void explain();
    [[nodiscard]] QString whatGoes() const;
    [[nodiscard]] int chosenHalf() const;

    /// What a command of this editor works on.
    struct Shown {
        int number;
        int half;
        Picture picture;
        bool complete;
    };
    [[nodiscard]] Shown shownNow() const;
    void showWritten(const Shown &shown, const Outcome &written);
    [[nodiscard]] bool saveToCatalogue(const Shown &shown, const QString &description) const;

    const SymbolEditorLook &look;
    QLineEdit *numberTxt;
    PictureBox *preview;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *editBut;
    QLabel *doubtLbl;   // beside the edit button
    QLabel *changedLbl; // below it
    QLabel *whatLbl;    // which picture a write takes, when it is not the number's that is typed
    QList<QRadioButton *> halves;
    Picture picture; // what the preview shows and the write button writes

    /// Which symbol the picture was read from, written to or drawn for last; number -1: none.
    struct Source {
        int number = -1;
        int half = 0;
        bool operator==(const Source &) const = default;
    };
    [[nodiscard]] Source sourceNow() const;
    Source source;
    Picture held;         // what the handheld holds of it, as far as this window knows
    QString refused;      // a description that was not taken: the next question proposes it
    bool sure = true;     // false after a write that failed: any of it may be there
    bool complete = true; // false after a read with a time-out or a damaged answer
};

} // namespace hr::ui
