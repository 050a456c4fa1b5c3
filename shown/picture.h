// The picture that the pixel editor shows: it lies in SpiBuf with a geometry, and its cells are the painted colours.
//
// Layout in SpiBuf: index 4 = width / 2 - 1, index 5 = height - 1, pixel rows from index 6 on (see handheld/picture.h).
// Without the size bytes (SymbolNoHeader) the rows begin at index 4.
#pragma once

#include "handheld/picture.h"
#include "symbols/pixel_cells.h"

#include <QString>

#include <vector>

// --- Geometry of the picture in SpiBuf. Set by ShowPicture, read by the conversions and the pixel editor. ---
extern int SymbolWidth;     // pixels
extern int SymbolHeight;    // rows
extern bool SymbolNoHeader; // no size bytes before the rows

/// Colours of the cells, index 0 = cell 1. Filled when the editor opens, changed by painting, copied to SpiBuf by OK.
extern PixelCells Pixel;

/// 1 when the pixel editor is finished; set to 0 by whoever opens it and waits.
extern int PixelEditDone;

PictureGeometry ShownGeometry();

/// Lays a picture into SpiBuf with its geometry, and takes it out again (as many bytes as it had).
void ShowPicture(const Picture &picture);
Picture TakePicture(size_t bytes);

/// The pixel rows alone: what a step back in the editor has to restore after a load.
std::vector<quint8> ShownRows();
void LayRows(const std::vector<quint8> &rows);

/// SpiBuf index of the first pixel byte: 6, or 4 without the size bytes.
int FirstPixelIndex();

/// Writes the two size bytes, unless SymbolNoHeader.
void LaySizeBytes();

/// Colour of pixel column x of buffer row y: Black for a set bit, else White.
int GetColor_from_SPIBUF(int x, int y);

/// Sets (Black) or clears (any other colour) the pixel's bit; the byte's other bits stay.
void set_color_in_spibuf(int colour, int x, int y);

void LoadCellsFromBuffer();
void StoreCellsInBuffer();
void ClearCells();

/// Loads a BMP file into SpiBuf. result: 0 = loaded, 1 = refused, after its box. The size bytes are not written.
void LoadBmpToSpibuf(const QString &fileName, int &result);

/// Writes the picture in SpiBuf into its template and, unless fileName is empty, copies the template there. result:
/// 0 = saved, 1 = failed; silently 1 for widths other than 48 and 14.
void SaveSpibufToBmp(const QString &fileName, int &result);

void ResetShownPicture();
