#include "shown/catalogue.h"

#include <utility>

namespace hr::shown
{

std::array<SymbolFiles, 3> SymbolKatalog;
int GewaehltesSymbol = NothingChosen;

namespace
{

std::function<void(SymbolKind, int)> changeHandler;

void TellChange(SymbolKind kind, int number)
{
    if (changeHandler)
        changeHandler(kind, number);
}

} // namespace

SymbolFiles &Katalog(SymbolKind kind)
{
    return SymbolKatalog.at(static_cast<size_t>(kind));
}

void ScanCatalogues()
{
    for (const SymbolKind kind : {SymbolKind::Loco, SymbolKind::Function, SymbolKind::Accessory}) {
        Katalog(kind) = ScanFolder(kind);
        TellChange(kind, -1);
    }
}

void EnterSymbolFile(SymbolKind kind, int number, int catalogueHalf, const QString &fileName)
{
    Katalog(kind).at(static_cast<size_t>(number)).at(static_cast<size_t>(catalogueHalf)) = fileName;
    TellChange(kind, number);
}

void TellPicturesChanged(SymbolKind kind)
{
    TellChange(kind, -1);
}

void OnCatalogueChange(std::function<void(SymbolKind, int)> handler)
{
    changeHandler = std::move(handler);
}

QString PicturePath(SymbolKind kind, int number, int catalogueHalf)
{
    if (number < 0 || number >= CatalogueSize)
        return {};
    const QString &name = Katalog(kind).at(static_cast<size_t>(number)).at(static_cast<size_t>(catalogueHalf));
    return name.isEmpty() ? QString() : SymbolPath(kind, name);
}

QString Description(SymbolKind kind, int number)
{
    return DescriptionOf(kind, Katalog(kind).at(static_cast<size_t>(number)));
}

void ResetCatalogues()
{
    SymbolKatalog = {};
    GewaehltesSymbol = NothingChosen;
    changeHandler = nullptr;
}

} // namespace hr::shown
