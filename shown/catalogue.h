// The symbol catalogues that pickers and editors show, and the number that a picker returns.
#pragma once

#include "symbols/symbol_catalogue.h"

#include <functional>

namespace hr::shown
{

/// By SymbolKind. Filled by ScanCatalogues, changed when a symbol is saved.
extern std::array<SymbolFiles, 3> SymbolKatalog;

SymbolFiles &Katalog(SymbolKind kind);

/// Result of the symbol pickers: -1 while one is open, the chosen number 0..255, or NothingChosen.
extern int GewaehltesSymbol;

/// Reads the three folders.
void ScanCatalogues();

/// Enters a saved file; what shows pictures of that number is told (see OnCatalogueChange).
void EnterSymbolFile(SymbolKind kind, int number, int catalogueHalf, const QString &fileName);

/// A file in the folder of a kind was written by its own name: its picture may be another one now.
void TellPicturesChanged(SymbolKind kind);

/// Called with kind and number after an entry changed, and with number -1 after a scan or a change of any file.
void OnCatalogueChange(std::function<void(SymbolKind, int)> handler);

/// Real path of the picture of a number and catalogue half; empty when there is none or the number is not 0..256.
QString PicturePath(SymbolKind kind, int number, int catalogueHalf);

QString Description(SymbolKind kind, int number);

void ResetCatalogues();

} // namespace hr::shown
