#include "symbols/symbol_catalogue.h"

#include "platform/files.h"
#include "platform/text.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace hr::symbols
{

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

bool IsLeftover(const QString &fileName)
{
    static const QRegularExpression leftover(
        QStringLiteral("\\.bmp\\.[A-Za-z0-9]{6}$"), QRegularExpression::CaseInsensitiveOption);
    return leftover.match(fileName).hasMatch();
}

} // namespace

SymbolFiles ScanFolder(SymbolKind kind)
{
    SymbolFiles files;
    int half = 0; // not reset from one name to the next: a name without a marker follows the one before it
    for (const QString &name : FileNames(KonfPath(NamesOf(kind).folder))) {
        if (IsLeftover(name))
            continue;
        if (HasHalves(kind))
            half = HalfOf(kind, name, half);
        const qsizetype blank = name.indexOf(u' ');
        if (blank < 0)
            continue;
        const int number = Val(name.left(blank));
        if (number < CatalogueSize)
            files.at(static_cast<size_t>(number)).at(static_cast<size_t>(half)) = name;
    }
    files.at(NothingChosen) = {}; // the pickers' "nothing chosen" never has a picture
    return files;
}

QString CatalogueFolderName(SymbolKind kind)
{
    return NamesOf(kind).folder.section(u'\\', -1, -1, QString::SectionSkipEmpty);
}

std::optional<int> MarkedHalf(SymbolKind kind, const QString &fileName)
{
    if (!HasHalves(kind))
        return HalfOn;
    const int marked = HalfOf(kind, fileName, -1);
    if (marked < 0)
        return {};
    return marked == CatalogueHalf(kind, HalfOn) ? HalfOn : HalfOff;
}

bool CarriesNumber(const QString &fileName, int number)
{
    static const QRegularExpression numberAndBlank(QStringLiteral("^[0-9]+ "));
    return numberAndBlank.match(fileName).hasMatch() && Val(fileName) == number;
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

std::optional<SymbolKind> KindOfFolder(const QString &path)
{
    for (const SymbolKind kind : {SymbolKind::Loco, SymbolKind::Function, SymbolKind::Accessory}) {
        if (IsSameFile(QFileInfo(path).absolutePath(), KonfPath(NamesOf(kind).folder)))
            return kind;
    }
    return {};
}

bool IsInSymbolFolder(const QString &path)
{
    return KindOfFolder(path).has_value();
}

QString SymbolPath(SymbolKind kind, const QString &fileName)
{
    return KonfPath(NamesOf(kind).folder) + u'/' + fileName;
}

QString DescriptionOf(SymbolKind kind, const std::array<QString, 2> &names)
{
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

} // namespace hr::symbols
