// The PC's library of symbol pictures: which file shows which symbol number.
//
// A file's name begins with the symbol number in plain decimal and a blank; for the kinds with two halves it holds a
// marker: "12 Licht %ON%.bmp", "3 Signal %ROT%.bmp", "7 Dampflok.bmp". Markers and ending in any case.
//
//   kind        folder                half 0      half 1
//   loco        konf\LokSymbole\      the picture  -
//   function    konf\LokfktSymbole\   %OFF%       %ON%
//   accessory   konf\MagSymbole\      %ROT%       %GRN%
#pragma once

#include "handheld/symbol_storage.h"

#include <QString>

#include <array>
#include <optional>

namespace hr::symbols
{

constexpr int CatalogueSize = 257; // numbers 0..256; 256 is the pickers' "nothing chosen" and has no picture
constexpr int NothingChosen = 256;

/// File names (without folder; empty = none) of one kind by symbol number and half.
using SymbolFiles = std::array<std::array<QString, 2>, CatalogueSize>;

/// The catalogue of a kind as its folder lists it. A missing folder gives an empty one. Later files of the same number
/// and half (in the order of names, case ignored) replace earlier ones; a name without a marker belongs to the half of
/// the file before it. What a broken save of a program may have left ("... .bmp.x7Gh2a") is passed over.
SymbolFiles ScanFolder(SymbolKind kind);

/// The half of the catalogue that shows the handheld's half h of a pair (HalfOn or HalfOff); 0 for loco symbols.
int CatalogueHalf(SymbolKind kind, int handheldHalf);

/// The file name ending of a new file: " %ON%.bmp", ".bmp", ... for the handheld's half h.
QString FileEnding(SymbolKind kind, int handheldHalf);

/// The folder of a kind without those above it: "LokSymbole".
QString CatalogueFolderName(SymbolKind kind);

/// The handheld's half that a file's name says by its marker; HalfOn for loco symbols, nothing where there is no marker.
std::optional<int> MarkedHalf(SymbolKind kind, const QString &fileName);

/// True when the file's name begins with this symbol number and a blank: only such a file is replaced when a symbol of
/// that number is saved. Entry 0 also lists files that carry no number at all.
bool CarriesNumber(const QString &fileName, int number);

/// The kind in whose folder a file lies; nothing for all other files.
std::optional<SymbolKind> KindOfFolder(const QString &path);
bool IsInSymbolFolder(const QString &path);

/// The real path of a file in the folder of its kind.
QString SymbolPath(SymbolKind kind, const QString &fileName);

/// What the pickers show beside the pictures: the file name (loco), or the second half's name without marker and
/// ending.
QString DescriptionOf(SymbolKind kind, const std::array<QString, 2> &names);

} // namespace hr::symbols
