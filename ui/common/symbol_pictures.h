// Pictures of the symbol catalogues for grids and picture boxes, loaded once and kept by kind, number and half.
#pragma once

#include "shown/catalogue.h"

#include <QImage>
#include <QPixmap>

namespace hr::ui
{

class Grid;

/// The picture of a number and catalogue half; null where there is none or the file is missing or damaged. The disk is
/// touched only when the picture is asked for the first time.
QPixmap SymbolPicture(SymbolKind kind, int number, int catalogueHalf);

/// The same by the handheld's half (HalfOn, HalfOff).
QPixmap SymbolPictureOfHalf(SymbolKind kind, int number, int handheldHalf);

/// What a kind of symbol is called: "Loksymbol".
QString KindWord(SymbolKind kind);

/// What a symbol is called: its description without number and ending. Empty where there is none.
QString SymbolName(SymbolKind kind, int number);

/// True when a word of what a symbol is called begins with the text; nothing begins with an empty one.
bool SymbolHasWord(SymbolKind kind, int number, const QString &beginning);

/// What a picture is in words, for those who cannot see it: "Funktionssymbol 12: Licht, ON". Empty halves are named.
QString SymbolWords(SymbolKind kind, int number, int handheldHalf);

/// The same for those who point at it, with the picture six times larger (rich text).
QString SymbolToolTip(SymbolKind kind, int number, int handheldHalf);

/// Shows a symbol's half in a grid's cell, with its words.
void ShowSymbol(Grid *grid, int row, int column, SymbolKind kind, int number, int handheldHalf);

/// The check mark of the import window.
QPixmap HookPicture();

/// A picture of the handheld upright, 1 bit a pixel.
QImage ImageOf(const Picture &picture);

/// Forgets the pictures of a number, of the whole kind with number -1: their files were written.
void DropSymbolPictures(SymbolKind kind, int number);

/// Forgets all. To be called while the application object lives.
void ResetSymbolPictures();

} // namespace hr::ui
