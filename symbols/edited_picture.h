// The picture that the pixel editor works on: its bytes as they are saved and handed back, and the cells as they are
// painted. Painting changes the cells alone; StoreCellsInBuffer makes the bytes of them, as OK does.
//
// bytes[0] = width / 2 - 1, bytes[1] = height - 1, pixel rows from index 2 on (see handheld/picture.h). Without the size
// bytes (SymbolNoHeader) the rows begin at index 0.
#pragma once

#include "symbols/bmp_file.h"
#include "symbols/pixel_cells.h"

namespace hr::symbols
{

struct EditedPicture {
    EditedPicture() : EditedPicture(EmptyPicture(SymbolKind::Loco)) { }
    explicit EditedPicture(const Picture &picture);

    int SymbolWidth;             // pixels
    int SymbolHeight;            // rows
    bool SymbolNoHeader = false; // no size bytes before the rows
    std::vector<quint8> bytes;   // as many as the picture had
    PixelCells Pixel{};          // index 0 = cell 1

    bool operator==(const EditedPicture &) const = default;

    [[nodiscard]] PictureGeometry geometry() const { return {SymbolWidth, SymbolHeight}; }

    /// The picture as its bytes are; as the cells show it.
    [[nodiscard]] Picture picture() const { return {geometry(), bytes}; }
    [[nodiscard]] Picture painted() const;

    /// Colour of pixel column x of row y, the bottom row is 0: Black for a set bit, else White.
    [[nodiscard]] int GetColor_from_SPIBUF(int x, int y) const;

    /// Sets (Black) or clears (any other colour) the pixel's bit; the byte's other bits stay.
    void set_color_in_spibuf(int colour, int x, int y);

    void LoadCellsFromBuffer();
    void StoreCellsInBuffer();
    void ClearCells();

    /// Writes the two size bytes, unless SymbolNoHeader.
    void LaySizeBytes();

    /// Loads a BMP file into the bytes. result: 0 = loaded, 1 = refused, after its box. The size bytes are not written.
    void LoadBmpToSpibuf(const QString &fileName, int &result);

    /// Writes the bytes into their template and, unless fileName is empty, copies the template there. result: 0 = saved,
    /// 1 = failed; silently 1 for widths other than 48 and 14.
    void SaveSpibufToBmp(const QString &fileName, int &result) const;

private:
    [[nodiscard]] size_t firstPixelIndex() const { return SymbolNoHeader ? 0 : SizeBytes; }
    [[nodiscard]] PictureRows rows() const;
};

} // namespace hr::symbols
