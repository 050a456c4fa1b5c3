#include "ui/catalogues/symbol_catalogue.h"

#include "platform/files.h"
#include "platform/text.h"

std::array<SymbolFiles, 3> SymbolKatalog;
int GewaehltesSymbol = NothingChosen;

namespace
{

struct KindNames {
    QString folder;
    std::array<QString, 2> markers; // by catalogue half
};

const KindNames &NamesOf(SymbolKind kind)
{
    static const std::array<KindNames, 3> names{KindNames{QStringLiteral("\\konf\\LokSymbole\\"), {}},
        KindNames{QStringLiteral("\\konf\\LokfktSymbole\\"), {QStringLiteral("%OFF%"), QStringLiteral("%ON%")}},
        KindNames{QStringLiteral("\\konf\\MagSymbole\\"), {QStringLiteral("%ROT%"), QStringLiteral("%GRN%")}}};
    return names.at(static_cast<size_t>(kind));
}

bool HasHalves(SymbolKind kind)
{
    return kind != SymbolKind::Loco;
}

/// The half that the name's marker says, or the half so far.
int HalfOf(SymbolKind kind, const QString &fileName, int halfSoFar)
{
    const QString upper = UpperLatin1(fileName);
    for (int half = 0; half < 2; ++half) {
        if (upper.contains(NamesOf(kind).markers.at(static_cast<size_t>(half))))
            return half;
    }
    return halfSoFar;
}

void ScanFolder(SymbolKind kind)
{
    SymbolFiles &files = Katalog(kind);
    files = {};
    int half = 0;
    for (const QString &name : FileNames(KonfPath(NamesOf(kind).folder))) {
        if (HasHalves(kind))
            half = HalfOf(kind, name, half);
        const qsizetype blank = name.indexOf(u' ');
        if (blank < 0)
            continue;
        const int number = Val(name.left(blank));
        if (number < CatalogueSize)
            files.at(static_cast<size_t>(number)).at(static_cast<size_t>(half)) = name;
    }
    files.at(NothingChosen) = {};
}

} // namespace

SymbolFiles &Katalog(SymbolKind kind)
{
    return SymbolKatalog.at(static_cast<size_t>(kind));
}

void ScanCatalogues()
{
    for (const SymbolKind kind : {SymbolKind::Loco, SymbolKind::Function, SymbolKind::Accessory})
        ScanFolder(kind);
}

int CatalogueHalf(SymbolKind kind, int handheldHalf)
{
    // The catalogue lists OFF and red first, the handheld ON and green.
    return HasHalves(kind) && handheldHalf == HalfOn ? 1 : 0;
}

QString FileEnding(SymbolKind kind, int handheldHalf)
{
    if (!HasHalves(kind))
        return QStringLiteral(".bmp");
    const auto half = static_cast<size_t>(CatalogueHalf(kind, handheldHalf));
    return u' ' + NamesOf(kind).markers.at(half) + QStringLiteral(".bmp");
}

QString SymbolFolder(SymbolKind kind)
{
    return NamesOf(kind).folder;
}

QString SymbolPath(SymbolKind kind, const QString &fileName)
{
    return KonfPath(NamesOf(kind).folder) + u'/' + fileName;
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
    const auto &names = Katalog(kind).at(static_cast<size_t>(number));
    if (!HasHalves(kind))
        return names.at(0);
    QString text = names.at(1);
    const QString marker = NamesOf(kind).markers.at(1);
    if (const qsizetype at = text.lastIndexOf(marker, -1, Qt::CaseInsensitive); at >= 0)
        text.remove(at, marker.size());
    if (const qsizetype at = text.lastIndexOf(QStringLiteral(".BMP"), -1, Qt::CaseInsensitive); at >= 0)
        text.truncate(at);
    return text;
}

void ResetCatalogues()
{
    SymbolKatalog = {};
    GewaehltesSymbol = NothingChosen;
}
