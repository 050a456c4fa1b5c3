// The window "PixelEdit": the user paints the picture in SpiBuf pixel by pixel, loads it from a BMP file or saves it.
//
// Left button black, right button white. Keyboard: arrows move a cursor, Space sets, Backspace clears. Painting
// changes only the cells; OK and every other way of closing copy them to SpiBuf. Loading changes SpiBuf at once.
#pragma once

#include <QWidget>

#include <array>

class PixelCanvas;
class QPushButton;

/// 1 when the editor is finished; set to 0 by whoever opens it and waits.
extern int PixelEditDone;

class PixelEditor : public QWidget
{
    Q_OBJECT

public:
    PixelEditor();
    ~PixelEditor() override;

    /// Shows the picture in SpiBuf with the present symbol geometry and waits until the user is done (or the program
    /// ends). The caller holds the busy scope.
    void edit();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void setUp();
    int placeButtons();
    void clearAll();
    void loadBmp();
    void saveBmp();
    void commit();

    PixelCanvas *canvas;
    std::array<QPushButton *, 4> buttons{};
};

/// The editor's window, made on first use, for those who name it as the one that is waited for.
QWidget *PixelEditorWindow();

/// Opens the pixel editor, which is made on first use, and waits until the user is done.
void EditPicture();

/// Destroys the editor window.
void ResetPixelEditor();
