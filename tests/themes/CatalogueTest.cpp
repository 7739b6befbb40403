// The site's page read into previews.
#include "themes/Catalogue.h"

#include "support/CataloguePage.h"
#include "support/Messages.h"

#include <gtest/gtest.h>

namespace {

const QUrl root(QStringLiteral("https://example.test/themes"));

Theme installed(const char *name)
{
    return {std::filesystem::path("/IPOD/.rockbox/themes") / (std::string(name) + ".cfg")};
}

/// The one preview that the page has for a theme named "Rock Roll"; a record without a source if there is none.
ThemePreview found(const QString &page)
{
    const Theme theme = installed("Rock Roll");
    return Catalogue::parseCatalog(page, {installed("Other"), theme}, root).value(theme.id());
}

std::string text(const std::optional<PicturePlace> &place)
{
    return place ? std::get<QUrl>(*place).toEncoded().toStdString() : "none";
}

std::string author(const QString &page)
{
    return found(page).author.value_or(QStringLiteral("none")).toStdString();
}

} // namespace

TEST(Catalogue, readsTheSitesPage)
{
    const QString page = cataloguePage(catalogueEntries(300));
    const std::vector<Theme> themes = {installed("amber 0 dawn"), installed("Amber_0_Dawn"),
        installed("Z\u0307o\u0301\u0142w 1 (Dawn)"), installed("i\"Classic 2 - dawn"), installed("RockRoll 298 Dawn"),
        installed("malaczcionka 4 Dawn"), installed("mała czcionka 9 dawn"), installed("Żółw 6 Dawn")};
    const ThemePreviews previews = Catalogue::parseCatalog(page, themes, root);
    EXPECT_EQ(previews.size(), 5 + 1); // neither the name without its letter nor the theme without a picture
    const ThemePreview first {
        .playing = QUrl(QStringLiteral("https://example.test/themes/themes/320x240/theme0/wps%20(main)-1.png")),
        .menu = QUrl(QStringLiteral("https://example.test/themes/themes/320x240/theme0/menu-1.png")),
        .source = QStringLiteral("Zrzuty z katalogu Rockbox (wersja katalogowa)"),
        .detail = QUrl(QStringLiteral("https://example.test/themes/index.php?themeid=4000&target=ipodvideo")),
        .author = QStringLiteral("Author 0")};
    EXPECT_EQ(previews.value(themes[0].id()), first);
    EXPECT_EQ(previews.value(themes[1].id()), first);
    EXPECT_EQ(previews.value(themes[4].id()).author, QStringLiteral("Author 298"));
    EXPECT_EQ(previews.value(themes[7].id()).author, std::nullopt);
}

TEST(Catalogue, fetchesFromItsSiteAlone)
{
    const std::string themes = "https://example.test/themes/themes/";
    const std::tuple<const char *, std::string, std::string> rows[] = {
        {"src=\"themes/a/b.png\" oversrc=\"themes/m.png\"", themes + "a/b.png", themes + "m.png"},
        {"alt=\"x\"\n src=\"themes/%20;#?ż&amp;&#261;.png\" /", themes + "%2520%3B%23%3F%C5%BC&%C4%85.png", "none"},
        {"src=\"https://elsewhere.test/themes/a.png\"", "none", "none"},
        {"src=\"//themes/a.png\" path=\"/a/\" oversrc=\"m.png\"", "none", "none"},
        {"src=\"themes/../y.png\" path=\"themes/a/\" oversrc=\"\"", "none", "none"},
        {"src=\"themes/&#46;&#46;/y.png\"", "none", "none"},
        {"src=\"\" datasrc=\"themes/b.png\"", "none", "none"},
    };
    for (const auto &[attributes, playing, menu] : rows) {
        const QString image = QString::fromUtf8(attributes);
        const ThemePreview preview = found(cataloguePage({{1, QStringLiteral("rock-roll"), image, {}}}));
        EXPECT_EQ(std::pair(text(preview.playing), text(preview.menu)), std::pair(playing, menu)) << attributes;
    }
    EXPECT_EQ(Catalogue::listPage(root, QStringLiteral("a b#c&d=ż")).toEncoded(),
        "https://example.test/themes/index.php?target=a%20b%23c&d=%C5%BC");
    EXPECT_TRUE(Catalogue::listPage(root, QString(QChar(0xDCE9))).toEncoded().endsWith("?target=ipodvideo"));
}

TEST(Catalogue, takesTheLastEntryOfATheme)
{
    const QString title = QStringLiteral("Rock &amp; Roll");
    const CatalogueEntry a {1, title, QStringLiteral("src=\"themes/a\""), QStringLiteral(" A&#261; ")};
    const CatalogueEntry b {2, title, QStringLiteral("src=\"themes/b\""), QStringLiteral("B")};
    EXPECT_EQ(text(found(cataloguePage({a, b})).playing), "https://example.test/themes/themes/b");
    // An id's last title counts, for its earlier pictures too.
    EXPECT_EQ(found(cataloguePage({a, {1, QStringLiteral("Else"), {}, {}}})).source, QString());
    EXPECT_EQ(author(cataloguePage({{1, QStringLiteral("Else"), a.image, a.submitter}, {1, title, {}, {}}})), "Aą");
    // Two equal pictures: the first one's author.
    CatalogueEntry again = a;
    again.submitter = QStringLiteral("Z");
    EXPECT_EQ(author(cataloguePage({a, again})), "Aą");
    EXPECT_EQ(found(cataloguePage({a}).remove(QStringLiteral("<th"))).source, QString());
}

TEST(Catalogue, looksForTheAuthorInTheCell)
{
    const QString page
        = cataloguePage({{1, QStringLiteral("Rock Roll"), screenshots(QStringLiteral("x")), QStringLiteral("Abc")}});
    const auto with = [&page](const QString &between) {
        return author(QString(page).replace(QStringLiteral("></a><br />\n<small>"), u'>' + between));
    };
    const auto characters = [](int count) { return QString(count, u'x'); };
    // "<strong>Submitter:</strong> &nbsp;" has 34 characters.
    EXPECT_EQ(with(characters(9'966 - 3)), "Abc");
    EXPECT_EQ(with(characters(9'966 - 1)), "A");
    EXPECT_EQ(with(characters(9'966)), "none");
    EXPECT_EQ(with(QStringLiteral("e\u0301").repeated(9'966 - 2)), "Ab");
    EXPECT_EQ(with(QStringLiteral("\u0301\r\n").repeated(4'000)), "Abc");
    EXPECT_EQ(with(QStringLiteral("</td>")), "none");
    EXPECT_EQ(with(QStringLiteral("</td")), "Abc");
}

TEST(Catalogue, decodesEntitiesAndComparesLettersAndNumbers)
{
    using Reading = QString (*)(const QString &);
    const Reading decoded = [](const QString &text) { return Catalogue::decoded(text); };
    const Reading compared = [](const QString &text) { return Catalogue::normalize(text); };
    const std::tuple<Reading, const char *, const char *> rows[] = {
        {decoded, "&quot;&#039;&lt;&gt;&amp;", "\"'<>&"},
        {decoded, "&amp;#65;&amp;amp;lt;", "A&amp;lt;"},
        {decoded, "&#261;&#128512;&#0000000000000065;", "ą😀A"},
        {decoded, "&#55357;&#1114112;&#99999999999;&#4294967361;", "&#55357;&#1114112;&#99999999999;&#4294967361;"},
        {decoded, "&#x41;&nbsp;&#65&#;&#6&#54;", "&#x41;&nbsp;&#65&#;&#66"},
        {compared, "RETRO_Blue-2!", "retroblue2"},
        {compared, "Ża\u0308 \u0301", "żä"},
        {compared, "Ⓐ²½Ⅷ٣一 ©😀½\u20E3", "ⓐ²½ⅷ٣一½\u20E3"},
        {compared, "\u093Ea\u0331 \u093E \u1000\u102C", "\u093Ea\u0331\u1000\u102C"},
    };
    for (const auto &[reading, given, expected] : rows) {
        EXPECT_EQ(reading(QString::fromUtf8(given)), QString::fromUtf8(expected)) << given;
    }
}

TEST(Catalogue, readsHostilePagesInTimeToo)
{
    const QString rows[] = {QStringLiteral("<th").repeated(1'000'000),
        QStringLiteral("<th><a href=\"index.php?themeid=") + QString(3'000'000, u'1'),
        QStringLiteral("<a href=\"index.php?themeid=1\"><img ").repeated(100'000),
        QStringLiteral("<a href=\"index.php?themeid=1\"><img x>").repeated(100'000)};
    for (const QString &row : rows) {
        const QString page = cataloguePage({{1, QStringLiteral("Rock Roll"), QStringLiteral("x"), {}}});
        EXPECT_NE(found(page + row).source, QString());
    }
}
