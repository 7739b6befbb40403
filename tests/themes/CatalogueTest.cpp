// The site's page read into previews.
#include "themes/Catalogue.h"

#include "support/CataloguePage.h"
#include "support/Testing.h"

namespace {

const QUrl root(u"https://example.test/themes"_s);

Theme installed(const char *name)
{
    return {fs::path("/IPOD/.rockbox/themes") / (std::string(name) + ".cfg")};
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
    return found(page).author.value_or(u"none"_s).toStdString();
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
        .playing = QUrl(u"https://example.test/themes/themes/320x240/theme0/wps%20(main)-1.png"_s),
        .menu = QUrl(u"https://example.test/themes/themes/320x240/theme0/menu-1.png"_s),
        .source = u"Zrzuty z katalogu Rockbox (wersja katalogowa)"_s,
        .detail = QUrl(u"https://example.test/themes/index.php?themeid=4000&target=ipodvideo"_s),
        .author = u"Author 0"_s};
    EXPECT_EQ(previews.value(themes[0].id()), first);
    EXPECT_EQ(previews.value(themes[1].id()), first);
    EXPECT_EQ(previews.value(themes[4].id()).author, u"Author 298"_s);
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
        const ThemePreview preview = found(cataloguePage({{1, u"rock-roll"_s, image, {}}}));
        EXPECT_EQ(std::pair(text(preview.playing), text(preview.menu)), std::pair(playing, menu)) << attributes;
    }
    EXPECT_EQ(Catalogue::listPage(root, u"a b#c&d=ż"_s).toEncoded(),
        "https://example.test/themes/index.php?target=a%20b%23c&d=%C5%BC");
    EXPECT_TRUE(Catalogue::listPage(root, QString(QChar(0xDCE9))).toEncoded().endsWith("?target=ipodvideo"));
}

TEST(Catalogue, takesTheLastEntryOfATheme)
{
    const QString title = u"Rock &amp; Roll"_s;
    const CatalogueEntry a {1, title, u"src=\"themes/a\""_s, u" A&#261; "_s};
    const CatalogueEntry b {2, title, u"src=\"themes/b\""_s, u"B"_s};
    EXPECT_EQ(text(found(cataloguePage({a, b})).playing), "https://example.test/themes/themes/b");
    // An id's last title counts, for its earlier pictures too.
    EXPECT_EQ(found(cataloguePage({a, {1, u"Else"_s, {}, {}}})).source, QString());
    EXPECT_EQ(author(cataloguePage({{1, u"Else"_s, a.image, a.submitter}, {1, title, {}, {}}})), "Aą");
    // Two equal pictures: the first one's author.
    CatalogueEntry again = a;
    again.submitter = u"Z"_s;
    EXPECT_EQ(author(cataloguePage({a, again})), "Aą");
    EXPECT_EQ(found(cataloguePage({a}).remove(u"<th"_s)).source, QString());
}

TEST(Catalogue, looksForTheAuthorInTheCell)
{
    const QString page = cataloguePage({{1, u"Rock Roll"_s, screenshots(u"x"_s), u"Abc"_s}});
    const auto with = [&page](const QString &between) {
        return author(QString(page).replace(u"></a><br />\n<small>"_s, u'>' + between));
    };
    const auto characters = [](int count) { return QString(count, u'x'); };
    // "<strong>Submitter:</strong> &nbsp;" has 34 characters.
    EXPECT_EQ(with(characters(9'966 - 3)), "Abc");
    EXPECT_EQ(with(characters(9'966 - 1)), "A");
    EXPECT_EQ(with(characters(9'966)), "none");
    EXPECT_EQ(with(u"e\u0301"_s.repeated(9'966 - 2)), "Ab");
    EXPECT_EQ(with(u"\u0301\r\n"_s.repeated(4'000)), "Abc");
    EXPECT_EQ(with(u"</td>"_s), "none");
    EXPECT_EQ(with(u"</td"_s), "Abc");
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
    const QString rows[]
        = {u"<th"_s.repeated(1'000'000), u"<th><a href=\"index.php?themeid="_s + QString(3'000'000, u'1'),
            u"<a href=\"index.php?themeid=1\"><img "_s.repeated(100'000),
            u"<a href=\"index.php?themeid=1\"><img x>"_s.repeated(100'000)};
    for (const QString &row : rows) {
        const QString page = cataloguePage({{1, u"Rock Roll"_s, u"x"_s, {}}});
        EXPECT_NE(found(page + row).source, QString());
    }
}
