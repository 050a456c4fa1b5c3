#include "symbols/symbol_geometry.h"

#include "handheld/transfer.h"

int SymbolWidth = LokSymbolWidth;
int SymbolHeight = LokSymbolHeight;
bool SymbolNoHeader = false;

namespace
{

void SetGeometry(int width, int height)
{
    SymbolWidth = width;
    SymbolHeight = height;
    SymbolNoHeader = false;
}

} // namespace

void SetSymbolGeometry(SymbolKind kind)
{
    if (kind == SymbolKind::Loco)
        SetGeometry(LokSymbolWidth, LokSymbolHeight);
    else
        SetGeometry(HalfSymbolWidth, HalfSymbolHeight);
}

void SetStartImageGeometry()
{
    SetGeometry(StartImageWidth, StartImageHeight);
}

int FirstPixelIndex()
{
    return SymbolNoHeader ? WritePosition : WritePosition + 2;
}

void LaySizeBytes()
{
    if (SymbolNoHeader)
        return;
    SpiBuf.at(WritePosition) = SymbolWidth / 2 - 1;
    SpiBuf.at(WritePosition + 1) = SymbolHeight - 1;
}

void ResetSymbolGeometry()
{
    SetGeometry(LokSymbolWidth, LokSymbolHeight);
}
