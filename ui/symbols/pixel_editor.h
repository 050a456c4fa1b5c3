// The window "PixelEdit": the user paints the picture in SpiBuf pixel by pixel, loads it from a BMP file or saves it.
//
// Left button black, right button white. Keyboard: arrows move a cursor, Space sets, Backspace clears. Painting
// changes only the cells; OK and every other way of closing copy them to SpiBuf. Loading changes SpiBuf at once.
#pragma once

#include "handheld/picture.h"
#include "ui/widgets/leavable_window.h"

#include <array>

class PixelCanvas;
class QPushButton;

class PixelEditor : public LeavableWindow
{
    Q_OBJECT

public:
    PixelEditor();
    ~PixelEditor() override;

    /// Shows the picture in SpiBuf with the present symbol geometry and waits until the user is done (or the program
    /// ends). The caller holds the busy scope.
    void edit();

protected:
    /// Every way out commits the cells.
    void leave() override;

private:
    void setUp();
    int placeButtons();
    void clearAll();
    void loadBmp();
    void saveBmp();

    PixelCanvas *canvas;
    std::array<QPushButton *, 4> buttons{};
};

/// Lets the user edit a picture in the pixel editor, which is made on first use, and waits until he is done. Returns the
/// edited picture with as many bytes and its size bytes laid. The caller holds the busy scope.
[[nodiscard]] Picture EditPicture(const Picture &picture);

/// Destroys the editor window.
void ResetPixelEditor();
