// 1-bit BMP files: from a file into the picture in SpiBuf, and back.
//
// Only these bytes of a file's header are consulted:
//   10      offset of the pixel rows (below 256)
//   18, 22  width and height, low bytes; must fit SymbolWidth and SymbolHeight
//   28      bits a pixel, must be 1
//   30      compression, must be 0
//   34, 35  size of the pixel data; divided by the height it gives the stored length of a row
// A file bit 0 is a set (dark) pixel whatever the palette says. Rows stand bottom row first, padded to the stored
// length. Saving overwrites the pixel rows of a template with the right header (konf\temp_loksym.bmp for pictures
// 48 pixels wide, konf\temp_lokfkt.bmp for 14) and copies the template to the target; a missing template is made.
//
// Every refusal is a box "Fehler!" (critical) that says what is wrong; SpiBuf and all files stay as they were then.
#pragma once

#include <QString>

/// Loads a file as a picture of the present symbol geometry. result: 0 = loaded, 1 = refused. The two size bytes
/// are not written.
void LoadBmpToSpibuf(const QString &fileName, int &result);

/// Writes the picture into its template and, unless fileName is empty, copies the template to fileName. result: 0 =
/// saved, 1 = failed; silently 1 for widths other than 48 and 14, which have no template.
void SaveSpibufToBmp(const QString &fileName, int &result);

/// Path of the template for pictures of this width (48 or 14); it shows the picture saved last.
QString TemplatePath(int width);
