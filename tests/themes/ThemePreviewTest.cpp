// Themes listed, their settings read, and the best picture found for each.
#include "themes/ThemePreview.h"

#include "support/Testing.h"

TEST(Themes, areCfgFilesInTheFileManagersOrder)
{
    const TemporaryFolder root;
    for (const char *name : {"a10.CFG", "B.cfg", "a2.cfg", "z\xB1.cfg", "note.txt", "cfg"}) {
        root.write(fs::path(".rockbox/real") / name, "wps: x");
    }
    fs::create_symlink(root / ".rockbox/real/B.cfg", root / ".rockbox/real/link.cfg");
    EXPECT_TRUE(Storage::themes(root.path()).empty());
    fs::create_directory_symlink(root / ".rockbox/real", root / ".rockbox/themes");
    EXPECT_TRUE(Storage::themes(root.path()).empty());
    fs::remove(root / ".rockbox/themes");
    fs::rename(root / ".rockbox/real", root / ".rockbox/themes");
    std::string names;
    for (const Theme &theme : Storage::themes(root.path())) {
        names += theme.url.filename().string() + " ";
    }
    EXPECT_EQ(names, "a2.cfg a10.CFG B.cfg z\xB1.cfg ");
}

TEST(ThemeConfiguration, readsFilesOfTheRealWorld)
{
    using namespace std::string_literals;
    const std::pair<std::string, std::string> rows[] = {
        {"a : b\r\nno colon\r\n\t # c: d\r\na: e f \v", "a=e f;"}, // the later of two
        {"Features: a:b:c\nsbs: -\rwps:\xE2\x80\xA8:x", "=x;Features=a:b:c;sbs=-;wps=;"},
        {"\xEF\xBB\xBF"s + "a: b", "a=b;"},
        {"\xFF\xFE"s + "a\0:\0b\0\r\0\n\0#\0:\0"s, "a=b;"},
        {"\xFE\xFF"s + "\0a\0:\0b"s, "a=b;"},
        {"a: \xE9", "a=é;"}, // Latin-1
        {"a: \xC5\xBC", "a=ż;"},
        {"a: b\0c"s, "a=b\0c;"s},
    };
    for (const auto &[bytes, settings] : rows) {
        const auto found = configurationFrom(QByteArray::fromStdString(bytes));
        std::string text;
        for (auto setting = found.begin(); setting != found.end(); ++setting) {
            text += setting.key().toStdString() + "=" + setting.value().toStdString() + ";";
        }
        EXPECT_EQ(text, settings);
    }
    const TemporaryFolder folder;
    folder.write("large.cfg", "a: b\n" + std::string(50'000'000, 'x'));
    EXPECT_TRUE(configuration(folder / "large.cfg").isEmpty());
}

TEST(ThemePreviews, takeTheBestPictureInTheFirmwaresFolder)
{
    const TemporaryFolder root;
    const Theme theme {root.write(".rockbox/themes/Name.cfg", "")};
    const QString key = u"theme-preview-"_s + ThemePreview::key(theme);
    const ThemePreview::ChosenPictures chosen {{key, QString::fromStdString((root / "own.jpg").string())}};
    const auto look = [&](const std::string &settings) {
        const auto configuration = configurationFrom(QByteArray::fromStdString(settings));
        return ThemePreview::local(theme, root.path(), configuration, chosen);
    };
    root.write("out/backdrop_wps.bmp", "");
    fs::create_directory_symlink(root / "out", root / ".rockbox/link");
    for (const char *link : {".rockbox/themes/Name.png", ".rockbox/a.bmp"}) {
        fs::create_symlink(root / "out/backdrop_wps.bmp", root / link);
    }
    for (const std::string value : {"/out/backdrop_wps.bmp", "out/x.wps", "/.rockbox/../out/backdrop_wps.bmp", "-", "",
             "/.rockbox/link/backdrop_wps.bmp", "/.rockbox/link.wps", "/.rockbox/a.bmp", "/.rockbox/",
             "/.rockbox/none"}) {
        EXPECT_FALSE(look("wps: " + value + "\nbackdrop: " + value)) << value;
    }
    EXPECT_FALSE(look(std::string("backdrop: /.rockbox/themes/Name.cfg\0", 36)));

    // From the least worth to the most.
    fs::remove(root / ".rockbox/themes/Name.png");
    for (const char *file : {".rockbox/backdrops/b.bmp", ".rockbox/wps/x/backdrop_wps.bmp",
             ".rockbox/themes/Name-preview.png", ".rockbox/themes/Name.jpg", ".rockbox/themes/Name.png", "own.jpg"}) {
        root.write(".rockbox/wps/x/backdrop_sbs.bmp", "");
        const PicturePlace place = root.write(file, "");
        const auto preview = look("wps: /.rockbox/wps/x.wps\nbackdrop: /.rockbox/backdrops/b.bmp");
        ASSERT_TRUE(preview) << file;
        EXPECT_EQ(preview->playing, place);
        EXPECT_EQ(preview->menu.has_value(), std::string(file).ends_with("wps.bmp")) << file;
    }
    EXPECT_EQ(ThemePreview::key({"/a.cfg"}).first(16), u"56710c495a80d919"_s);
}
