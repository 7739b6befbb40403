// The themes' catalogue.
#include "Figures.h"

#include "support/CataloguePage.h"

#include "themes/ThemePreview.h"

#include <QRegularExpression>

namespace Bench {

void catalogue(const std::filesystem::path &)
{
    constexpr int onThePage = 3000;
    constexpr int installed = 300;
    constexpr int turns = 21;
    const std::vector<CatalogueEntry> entries = catalogueEntries(onThePage);
    const QString page = cataloguePage(entries);
    std::vector<Theme> themes;
    for (int i = 0; i < installed; ++i) {
        const QString title = ThemePreview::decoded(entries[std::size_t(i) * onThePage / installed].title);
        themes.push_back({"/IPOD/.rockbox/themes/" + ThemePreview::normalize(title).toStdString() + ".cfg"});
    }
    const QUrl root(QStringLiteral("https://example.test"));
    const QRegularExpression patterns[] = {
        QRegularExpression(QStringLiteral("<th[^>]*>\\s*<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\">([^<]+)</a>"),
            QRegularExpression::UseUnicodePropertiesOption),
        QRegularExpression(QStringLiteral("<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\"><img ([^>]+)>"),
            QRegularExpression::UseUnicodePropertiesOption),
    };
    print("catalogue",
        inTurn([&] { return seconds([&] { (void)ThemePreview::parseCatalog(page, themes, root); }); },
            [&] {
                return seconds([&] {
                    for (const QRegularExpression &pattern : patterns) {
                        for (auto match = pattern.globalMatch(page); match.hasNext();) {
                            (void)match.next();
                        }
                    }
                });
            },
            turns));
}

} // namespace Bench
