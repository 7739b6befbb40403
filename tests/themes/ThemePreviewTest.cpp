// Themes listed, their settings read, and the best picture found for each.
#include "themes/ThemePreview.h"

#include "platform/Files.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

QString background()
{
    return QStringLiteral("Tło motywu — bez elementów interfejsu");
}

/// A device with one theme.
struct Themed {
    TemporaryFolder root;
    Theme theme {root.write(".rockbox/themes/Name.cfg", "")};

    [[nodiscard]] std::optional<ThemePreview> local(
        const std::string &settings, const ThemePreview::ChosenPictures &chosen = {}) const
    {
        const auto configuration = ThemePreview::configurationFrom(QByteArray::fromStdString(settings));
        return ThemePreview::local(theme, root.path(), configuration, chosen);
    }
};

} // namespace

TEST(Themes, areCfgFilesInTheFileManagersOrder)
{
    const TemporaryFolder root;
    EXPECT_TRUE(Storage::themes(root.path()).empty());
    for (const char *name : {"a10.CFG", "B.cfg", "a2.cfg", ".hidden.cfg", "\xB1.cfg", "note.txt", "cfg"}) {
        root.write(std::filesystem::path("real") / name, "wps: x");
    }
    std::filesystem::create_symlink(root / "real/B.cfg", root / "real/link.cfg");
    std::filesystem::create_directories(root / ".rockbox");
    std::filesystem::create_directory_symlink(root / "real", root / ".rockbox/themes");
    EXPECT_TRUE(Storage::themes(root.path()).empty());
    std::filesystem::remove(root / ".rockbox/themes");
    std::filesystem::rename(root / "real", root / ".rockbox/themes");

    const std::vector<Theme> themes = Storage::themes(root.path());
    std::vector<std::string> names;
    for (const Theme &theme : themes) {
        names.push_back(theme.url.filename().string());
        EXPECT_EQ(Files::fromText(theme.id()), theme.url);
        EXPECT_EQ(ThemePreview::configuration(theme.url).value(QStringLiteral("wps")), QStringLiteral("x"));
    }
    ASSERT_EQ(names.size(), 5U);
    const auto place = [&](const char *name) { return std::find(names.begin(), names.end(), name) - names.begin(); };
    EXPECT_TRUE(place("a2.cfg") < place("a10.CFG") && place("a10.CFG") < place("B.cfg") && place("B.cfg") < 5);
}

TEST(ThemeConfiguration, readsFilesOfTheRealWorld)
{
    const auto utf16 = [](const char *mark, const char *text, bool bigEndian) {
        std::string bytes(mark);
        for (; *text != 0; ++text) {
            bytes += bigEndian ? std::string({'\0', *text}) : std::string({*text, '\0'});
        }
        return bytes;
    };
    const ThemePreview::Configuration a {{QStringLiteral("a"), QStringLiteral("b")}};
    const std::pair<std::string, ThemePreview::Configuration> rows[] = {
        {"a : b", a},
        {"\xEF\xBB\xBF"
         "a: b\r\n",
            a},
        {utf16("\xFF\xFE", "a: b\r\n", false), a},
        {utf16("\xFE\xFF", "x\na: b", true), a},
        {"\t # a: c\n\xC2\xA0"
         "a:b \v\na",
            a},
        {"a: c\ra:b\xE2\x80\xA9", a},
        {"Features: a:b:c", {{QStringLiteral("Features"), QStringLiteral("a:b:c")}}},
        {"iconset: -\nsbs:\n: x",
            {{QStringLiteral("iconset"), QStringLiteral("-")}, {QStringLiteral("sbs"), QString()},
                {QString(), QStringLiteral("x")}}},
        {"k: \xE9", {{QStringLiteral("k"), QStringLiteral("é")}}},
        {"k: \xC5\xBC", {{QStringLiteral("k"), QStringLiteral("ż")}}},
        {std::string("k: \0x", 5), {{QStringLiteral("k"), QString(QChar(u'\0')) + u'x'}}},
        {"", {}},
    };
    for (const auto &[bytes, settings] : rows) {
        EXPECT_EQ(ThemePreview::configurationFrom(QByteArray::fromStdString(bytes)), settings) << bytes;
    }
    const TemporaryFolder folder;
    EXPECT_TRUE(
        ThemePreview::configuration(folder.write("large.cfg", "a: b\n" + std::string(50'000'000, 'x'))).isEmpty());
    EXPECT_TRUE(ThemePreview::configuration(folder.path()).isEmpty());
}

TEST(ThemePreviews, takeTheBestPicture)
{
    const Themed device;
    const std::string settings = "wps: /.rockbox/wps/x.wps\nbackdrop: /.rockbox/backdrops/b.bmp";
    EXPECT_FALSE(device.local(settings));
    // From the least worth to the most; each is found as soon as it is there.
    const auto backdrop = device.root.write(".rockbox/backdrops/b.bmp", "");
    EXPECT_EQ(device.local(settings),
        (ThemePreview {.playing = backdrop, .menu = {}, .source = background(), .detail = {}, .author = {}}));
    const auto menu = device.root.write(".rockbox/wps/x/backdrop_sbs.bmp", "");
    EXPECT_EQ(device.local(settings)->playing, PicturePlace(backdrop));
    const auto wps = device.root.write(".rockbox/wps/x/backdrop_wps.bmp", "");
    EXPECT_EQ(device.local(settings),
        (ThemePreview {.playing = wps, .menu = menu, .source = background(), .detail = {}, .author = {}}));
    for (const char *name : {"Name-preview.png", "Name.jpg", "Name.png"}) {
        const auto screenshot = device.root.write(std::filesystem::path(".rockbox/themes") / name, "");
        EXPECT_EQ(device.local("")->playing, PicturePlace(screenshot));
        EXPECT_EQ(device.local(settings)->source, QStringLiteral("Zrzut z paczki"));
    }
    const auto own = device.root.write("own.jpg", "");
    const ThemePreview::ChosenPictures chosen {
        {QStringLiteral("theme-preview-") + ThemePreview::key(device.theme), Files::text(own)}};
    EXPECT_EQ(device.local(settings, chosen), ThemePreview::chosen(own));
    std::filesystem::remove(own);
    EXPECT_EQ(device.local(settings, chosen)->source, QStringLiteral("Zrzut z paczki"));
    EXPECT_EQ(ThemePreview::key({"/a.cfg"}),
        QStringLiteral("56710c495a80d9192b54967d22b8d34ca14b754395c81282c5d554823c17c948"));
}

TEST(ThemePreviews, stayInTheFirmwaresFolder)
{
    const Themed device;
    device.root.write("out/backdrop_wps.bmp", "");
    std::filesystem::create_directory_symlink(device.root / "out", device.root / ".rockbox/link");
    std::filesystem::create_symlink(device.root / "out/backdrop_wps.bmp", device.root / ".rockbox/themes/Name.png");
    std::filesystem::create_symlink(device.root / "out/backdrop_wps.bmp", device.root / ".rockbox/a.bmp");
    const std::string values[] = {"/out/backdrop_wps.bmp", "out/x.wps", "/.rockbox/../out/backdrop_wps.bmp",
        "/.rockbox/link/backdrop_wps.bmp", "/.rockbox/link.wps", "/.rockbox/link/", "/.rockbox/a.bmp", "/.rockbox/",
        "/.rockbox/themes/Name.cfg" + std::string(1, '\0'), "/etc/passwd", "-", "",
        "/.rockbox/" + std::string(60'000, '/') + "a"};
    for (const std::string &value : values) {
        EXPECT_FALSE(device.local("wps: " + value + "\nbackdrop: " + value)) << value;
    }
}
