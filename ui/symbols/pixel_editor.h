// The window "PixelEdit": the user paints a picture pixel by pixel, loads it from a BMP file or saves it.
//
// Left button black, right button white. Keyboard: arrows move a cursor, Space sets, Backspace clears. Painting
// changes only the cells; OK and every other way of closing make the picture of them. What is saved is the picture: as
// it was opened or loaded.
// Whatever changes the picture can be taken back until the window is left.
#pragma once

#include "ui/symbols/pixel_history.h"
#include "ui/widgets/leavable_window.h"

#include <array>
#include <optional>

class QAction;
class QMenu;
class QPushButton;
class QScrollArea;
class QToolButton;

namespace hr::ui
{

class PixelCanvas;
class PixelPreview;

class PixelEditor : public LeavableWindow
{
    Q_OBJECT

public:
    PixelEditor();
    ~PixelEditor() override;

    /// Shows a picture and waits until the user is done (or the program ends); the edited picture has as many bytes. One
    /// that is larger than the screen is scrolled. The caller holds the busy scope.
    [[nodiscard]] Picture edit(const Picture &picture);

    [[nodiscard]] const EditedPicture &edited() const { return picture; }

protected:
    /// Every way out commits the cells.
    void leave() override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    template <typename Act> QAction *addCommand(const char *name, const QString &text, QKeyCombination key, Act act);
    void buildMenu();
    void buildPictureCommands();
    void openMenu();
    void setUp();
    void fitScreen();
    void showCell(const QRect &cell);
    int placeButtons();
    void placeExtras(int buttonsEnd);
    void showCells();
    void change(const PixelCells &cells);
    void clearAll();
    void copy();
    void paste();
    void loadBmp();
    [[nodiscard]] std::optional<PixelCells> cellsOfPng(const QByteArray &content, const QString &name);
    void saveBmp();

    EditedPicture picture;
    int PixelEditDone = 1; // 0 while the user edits
    PixelHistory history;
    QScrollArea *scroller; // shows all of the area where the screen has room
    QWidget *area;
    PixelPreview *preview;
    PixelCanvas *canvas;
    QMenu *editMenu;
    QToolButton *editButton;
    std::array<QPushButton *, 4> buttons{};
};

/// Lets the user edit a picture in the pixel editor, which is made on first use, and waits until he is done. Returns
/// the edited picture with as many bytes and its size bytes laid. The caller holds the busy scope.
[[nodiscard]] Picture EditPicture(const Picture &picture);

/// Destroys the editor window.
void ResetPixelEditor();

} // namespace hr::ui
