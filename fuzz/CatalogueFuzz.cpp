// Previews from arbitrary pages, held against the plain way to find them, which takes the square of a page's length.
#include "FuzzFile.h"

#include "platform/Characters.h"
#include "themes/ThemePreview.h"

#include <QRegularExpression>

namespace {

const QUrl root(QStringLiteral("https://example.test"));

const QRegularExpression &plain(const QString &pattern)
{
    static QHash<QString, QRegularExpression> compiled;
    auto found = compiled.find(pattern);
    if (found == compiled.end()) {
        found = compiled.insert(pattern, QRegularExpression(pattern, QRegularExpression::UseUnicodePropertiesOption));
    }
    return *found;
}

QString attribute(const QString &name, const QString &attributes)
{
    const QRegularExpression &pattern = plain(QStringLiteral("(?:^|\\s)%1=\"([^\"]*)\"").arg(name));
    return ThemePreview::decoded(pattern.match(attributes).captured(1));
}

bool isOnSite(const QString &path)
{
    return path.startsWith(QStringLiteral("themes/")) && !path.contains(QStringLiteral(".."));
}

void check(const QString &html, const QString &id, const QRegularExpressionMatch &image, const ThemePreview &preview)
{
    const QString over = attribute(QStringLiteral("oversrc"), image.captured(2));
    const QString menu = attribute(QStringLiteral("path"), image.captured(2)) + over;
    require(preview.playing.has_value() == isOnSite(attribute(QStringLiteral("src"), image.captured(2))));
    require(preview.menu.has_value() == (!over.isEmpty() && isOnSite(menu)));
    for (const auto &place : {preview.playing, preview.menu}) {
        require(!place || std::get<QUrl>(*place).toEncoded().startsWith("https://example.test/themes/"));
    }
    require(preview.detail->query() == QStringLiteral("themeid=%1&target=ipodvideo").arg(id));

    const qsizetype end = html.indexOf(image.captured()) + image.capturedLength();
    QString cell = firstCharacters(html.mid(end), 10'000);
    cell = cell.section(QStringLiteral("</td>"), 0, 0);
    const auto author = plain(QStringLiteral("<strong>Submitter:</strong>\\s*&nbsp;([^<]+)")).match(cell);
    require(preview.author.has_value() == author.hasMatch());
    require(!preview.author || *preview.author == ThemePreview::decoded(author.captured(1)).trimmed());
}

void compare(const QString &html)
{
    const std::vector<Theme> themes {{"/a/Retro Blue.cfg"}, {"/b/retroblue.cfg"}, {"/ż1.cfg"}, {"/!.cfg"}};
    const ThemePreview::ByTheme found = ThemePreview::parseCatalog(html, themes, root);
    QHash<QString, QString> titles;
    const auto &title
        = plain(QStringLiteral("<th[^>]*>\\s*<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\">([^<]+)</a>"));
    for (auto match = title.globalMatch(html); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        titles.insert(next.captured(1), ThemePreview::normalize(ThemePreview::decoded(next.captured(2))));
    }
    qsizetype expected = 0;
    for (const Theme &theme : themes) {
        QRegularExpressionMatch last;
        const auto &image = plain(QStringLiteral("<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\"><img ([^>]+)>"));
        for (auto match = image.globalMatch(html); match.hasNext();) {
            const QRegularExpressionMatch next = match.next();
            const auto named = titles.constFind(next.captured(1));
            last = named != titles.cend() && *named == ThemePreview::normalize(theme.name()) ? next : last;
        }
        require(found.contains(theme.id()) == last.hasMatch());
        if (last.hasMatch()) {
            ++expected;
            check(html, last.captured(1), last, found[theme.id()]);
        }
    }
    require(found.size() == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    compare(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));

    std::u16string units(size / 2, u'\0'); // any, paired or not
    std::copy_n(data, units.size() * 2, reinterpret_cast<std::uint8_t *>(units.data()));
    const QString text = QString::fromStdU16String(units);
    require(ThemePreview::decoded(text).size() <= text.size());
    const QString name = ThemePreview::normalize(text);
    require(!name.contains(u' ') && !name.contains(u'\n'));
    (void)ThemePreview::parseCatalog(text, {{"/a.cfg"}}, root);
    return 0;
}
