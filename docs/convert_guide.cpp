// Turns the user guide (Markdown, as the repository shows it) into the page that lies beside the program: the program's
// own window shows it, and every browser does.
//
// Usage: convert_guide GUIDE.md PAGE.html

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextStream>
#include <QTextTable>

namespace
{

constexpr int CellPadding = 4; // pixels
constexpr int HeadingMargin = 18;

/// As the repository's own viewer names the places that links lead to: "Wenn etwas nicht geht" is wenn-etwas-nicht-geht.
QString AnchorOf(const QString &heading)
{
    static const QRegularExpression other(QStringLiteral("[^\\w -]"), QRegularExpression::UseUnicodePropertiesOption);
    return heading.toLower().remove(other).replace(u' ', u'-');
}

void NameHeadings(const QTextDocument &guide)
{
    for (QTextBlock block = guide.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0)
            continue;
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        QTextCharFormat named;
        named.setAnchor(true);
        named.setAnchorNames({AnchorOf(block.text())});
        cursor.mergeCharFormat(named);
        QTextBlockFormat spaced;
        spaced.setTopMargin(HeadingMargin);
        cursor.mergeBlockFormat(spaced);
    }
}

void FormatTables(QTextFrame *frame)
{
    for (QTextFrame *child : frame->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(child)) {
            QTextTableFormat format = table->format();
            format.setBorder(1);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderCollapse(true);
            format.setCellPadding(CellPadding);
            table->setFormat(format);
        }
        FormatTables(child);
    }
}

/// Fonts are the reader's: those of this computer go. What stands in a font of its own is what users type.
QString Page(const QTextDocument &guide)
{
    static const QRegularExpression style(
        QStringLiteral("<style.*</style>"), QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression body(QStringLiteral("<body[^>]*>"));
    static const QRegularExpression family(QStringLiteral("font-family:'[^>;]*;"));
    QString page = guide.toHtml();
    page.replace(style,
        QStringLiteral("<title>Benutzerhandbuch</title>\n<style type=\"text/css\">\n"
                       "body { font-family: sans-serif; max-width: 60em; margin: 1em auto; padding: 0 1em; }\n"
                       "img { max-width: 100%; }\n</style>"));
    return page.replace(body, QStringLiteral("<body>"))
        .replace(family, QStringLiteral("font-family:monospace; font-weight:600;"));
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3)
        return 2;
    const QGuiApplication application(argc, argv);
    QFile from(QString::fromLocal8Bit(argv[1]));
    QFile to(QString::fromLocal8Bit(argv[2]));
    if (!from.open(QIODevice::ReadOnly) || !to.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 1;
    QTextDocument guide;
    guide.setMarkdown(QString::fromUtf8(from.readAll()), QTextDocument::MarkdownDialectGitHub);
    NameHeadings(guide);
    FormatTables(guide.rootFrame());
    return to.write(Page(guide).toUtf8()) > 0 ? 0 : 1;
}
