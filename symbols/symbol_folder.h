// A folder that holds the pictures of all symbols of a handheld, laid out as the PC's library is:
//
//   ORDNER/LokSymbole/7 Dampflok.bmp
//   ORDNER/LokfktSymbole/12 Licht %ON%.bmp, 12 Licht %OFF%.bmp
//   ORDNER/MagSymbole/3 Signal %GRN%.bmp, 3 Signal %ROT%.bmp
//
// .bmp and .png, markers and endings in any case. What its name does not place (no number, no marker, an unknown number) is
// no symbol, and is named.
#pragma once

#include "handheld/record_kinds.h"

#include <QStringList>

#include <vector>

namespace hr::symbols
{

/// All symbols of a handheld, both halves: kind by kind, in the order of the flash.
std::vector<RecordId> AllSymbols();

struct FolderPicture {
    RecordId id;
    QString path;
    Picture picture;
};

/// What a folder holds, in the order of AllSymbols. With faults it is not to be used: a German line each, which names the
/// file. `passedOver` names files that are no symbols.
struct SymbolFolder {
    std::vector<FolderPicture> pictures;
    QStringList faults;
    QStringList passedOver;
};
SymbolFolder ReadSymbolFolder(const QString &folder);

/// True for the bytes of a place that was never written: it holds no picture.
bool IsErased(const Picture &picture);

/// Writes pictures, each into the file that shows its symbol there already, otherwise under the description that the PC's
/// library has of it ("12 Symbol %ON%.bmp" where it has none). Returns the first file that could not be written, or nothing.
QString WriteSymbolFolder(const QString &folder, const std::vector<std::pair<RecordId, Picture>> &pictures);

} // namespace hr::symbols
