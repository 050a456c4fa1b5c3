#include "symbols/symbol_folder.h"

#include "platform/files.h"
#include "platform/text.h"
#include "symbols/image_file.h"
#include "symbols/symbol_catalogue.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <map>

namespace hr::symbols
{

namespace
{

constexpr qint64 LargestFile = 16LL * 1024 * 1024;
constexpr std::array SymbolKinds{SymbolKind::Loco, SymbolKind::Function, SymbolKind::Accessory};

QString FolderOf(const QString &folder, SymbolKind kind)
{
    return folder + u'/' + CatalogueFolderName(kind);
}

/// The symbol that a file shows, by its name.
std::optional<RecordId> PlacedBy(SymbolKind kind, const QString &fileName)
{
    const int number = Val(fileName);
    const auto half = MarkedHalf(kind, fileName);
    if (!IsImageName(fileName) || !CarriesNumber(fileName, number) || !half)
        return {};
    const RecordId id{RecordKindOf(kind, *half), number};
    return number <= RowOf(id.kind).highest ? std::optional(id) : std::nullopt;
}

/// Files by the symbol that they show; the fault names a symbol that two files show.
struct Places {
    std::map<RecordId, QString> paths;
    QStringList faults;
    QStringList passedOver;
};

Places PlacesOf(const QString &folder)
{
    Places places;
    for (const SymbolKind kind : SymbolKinds) {
        const QString place = FolderOf(folder, kind);
        for (const QString &name : FileNames(place)) {
            const auto id = PlacedBy(kind, name);
            const QString path = place + u'/' + name;
            if (!id)
                places.passedOver += path;
            else if (const auto [at, isNew] = places.paths.emplace(*id, path); !isNew)
                places.faults += QStringLiteral("%1 steht in zwei Dateien: %2 und %3")
                                     .arg(RecordName(*id), QFileInfo(at->second).fileName(), name);
        }
    }
    return places;
}

QString NewName(const RecordId &id, const SymbolFiles &catalogue)
{
    const SymbolKind kind = SymbolKindOf(id.kind);
    const int half = HalfOf(id.kind);
    const QString known =
        catalogue.at(static_cast<size_t>(id.number)).at(static_cast<size_t>(CatalogueHalf(kind, half)));
    if (CarriesNumber(known, id.number) && MarkedHalf(kind, known) == half && IsImageName(known))
        return known;
    return QString::number(id.number) + QStringLiteral(" Symbol") + FileEnding(kind, half);
}

/// The picture of a file, or its fault.
ReadImage ReadFile(const QString &path, PictureGeometry geometry)
{
    const auto file = ReadSmallFile(path, LargestFile);
    return file ? ReadImageFile(path, *file, geometry) : ReadImage{{}, QStringLiteral("nicht lesbar oder zu groß")};
}

} // namespace

std::vector<RecordId> AllSymbols()
{
    std::vector<RecordId> all;
    for (const SymbolKind kind : SymbolKinds) {
        const RecordKind first = RecordKindOf(kind, HalfOn);
        for (int number = 0; number <= RowOf(first).highest; ++number) {
            all.push_back({first, number});
            if (kind != SymbolKind::Loco)
                all.push_back({RecordKindOf(kind, HalfOff), number});
        }
    }
    return all;
}

SymbolFolder ReadSymbolFolder(const QString &folder)
{
    const Places places = PlacesOf(folder);
    SymbolFolder read{{}, places.faults, places.passedOver};
    for (const RecordId &id : AllSymbols()) {
        const auto place = places.paths.find(id);
        if (place == places.paths.end())
            continue;
        Picture picture = EmptyPicture(SymbolKindOf(id.kind));
        const ReadImage image = ReadFile(place->second, picture.geometry);
        if (image.fault.isEmpty())
            std::ranges::copy(image.rows, picture.bytes.begin() + SizeBytes);
        else
            read.faults += QFileInfo(place->second).fileName() + QStringLiteral(": ") + image.fault;
        read.pictures.push_back({id, place->second, picture});
    }
    return read;
}

bool IsErased(const Picture &picture)
{
    return std::all_of(picture.bytes.begin(), picture.bytes.begin() + FlashBytesOf(picture.geometry),
        [](quint8 byte) { return byte == EmptyByte; });
}

QString WriteSymbolFolder(const QString &folder, const std::vector<std::pair<RecordId, Picture>> &pictures)
{
    const Places places = PlacesOf(folder);
    std::map<SymbolKind, SymbolFiles> catalogues;
    for (const SymbolKind kind : SymbolKinds) {
        if (!MakeFolder(FolderOf(folder, kind)))
            return FolderOf(folder, kind);
        catalogues.emplace(kind, ScanFolder(kind));
    }
    for (const auto &[id, picture] : pictures) {
        const SymbolKind kind = SymbolKindOf(id.kind);
        const auto known = places.paths.find(id);
        const QString path = known != places.paths.end()
            ? known->second
            : FolderOf(folder, kind) + u'/' + NewName(id, catalogues.at(kind));
        if (!ReplaceFile(path, ImageFileOf(path, RowsOf(picture), picture.geometry)))
            return path;
    }
    return {};
}

} // namespace hr::symbols
