#include "storage/PathSafety.h"
#include "storage/DeviceAnchor.h"
#include "storage/FolderTree.h"

#include "support/Testing.h"

#include <sys/stat.h>

namespace {

using Rows = std::vector<std::pair<QString, QString>>;

const QString nameless = u"Bez nazwy"_s;
const QString polish = u"ż"_s;
const QString flag = u"\U0001F1F5\U0001F1F1"_s; // two code points, four UTF-16 units, one character
const QString combined = u"z\u0307"_s;
const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;

} // namespace

TEST(SafeName, makesOneComponentOfAnyText)
{
    const Rows rows {{u"AC/DC"_s, u"AC-DC"_s}, {u"a//b"_s, u"a--b"_s}, {u"a:b\\c"_s, u"a-b-c"_s},
        {u"a\nb\rc\0d"_s, u"a-b-c-d"_s}, {u"/"_s, u"-"_s}, {u"  "_s, nameless}, {QString(), nameless},
        {u"."_s, nameless}, {u" .. "_s, nameless}, {u"..."_s, u"..."_s}, {u"\u00A0\tco? jak*\u2003"_s, u"co? jak*"_s},
        {u".hidden."_s, u".hidden."_s}, {polish.repeated(161), polish.repeated(160)},
        {flag.repeated(161), flag.repeated(160)}, {combined.repeated(161), combined.repeated(160)},
        {family.repeated(161), family.repeated(160)}, {QString(159, u'a') + u" b.flac"_s, QString(159, u'a') + u' '}};
    for (const auto &[text, name] : rows) {
        EXPECT_EQ(safeName(text), name) << text;
    }
}

TEST(VolumeName, followsTheRulesOfTheVolume)
{
    const Rows rows {{u"a*b:c<d>e?f\\g|h"_s, u"a_b_c_d_e_f_g_h"_s}, {u"\"Live\""_s, u"'Live'"_s},
        {u"tab\there\x7F"_s, u"tab_here_"_s}, {u"Kto tam?.. ."_s, u"Kto tam_"_s}, {u"Utwór (2)."_s, u"Utwór (2)"_s},
        {u"..."_s, nameless}, {u"byte"_s + QChar(0xDCE9), u"byte_"_s}, {flag.repeated(160), flag.repeated(63)},
        {polish.repeated(160), polish.repeated(160)}};
    for (const auto &[text, name] : rows) {
        EXPECT_EQ(volumeName(text, Volumes::NameRules::Fat), name) << text;
        EXPECT_EQ(volumeName(text, Volumes::NameRules::Posix), text);
    }
    const QString ending = u" (2).flac"_s;
    EXPECT_EQ(volumeName(flag.repeated(160), Volumes::NameRules::Fat, ending), flag.repeated(61) + ending);
    EXPECT_EQ(volumeName(flag, Volumes::NameRules::Fat, QString(300, u'x')), QString(255, u'x'));
}

TEST(ForEachBelow, goesNowhereElseWhateverHappensOnTheWay)
{
    constexpr std::size_t all = 22;
    for (const auto &[changeAt, reached] : std::map<std::size_t, std::size_t> {{1, 1}, {2, all}, {all, all}}) {
        const TemporaryFolder folder;
        folder.write("outside/d/d/secret", "x");
        fs::path deep = "tree/way";
        for (int level = 0; level < 20; ++level) { // more than are open at a time
            deep /= "d";
        }
        folder.write(deep / "leaf", "x");
        std::size_t seen = 0;
        const auto use = [&](const Storage::TreeItem &item) {
            ++seen;
            EXPECT_NE(item.path.filename(), "secret");
            struct stat status {};
            EXPECT_EQ(::fstatat(item.folder, item.path.filename().c_str(), &status, AT_SYMLINK_NOFOLLOW), 0);
            if (seen == changeAt) {
                fs::rename(folder / "tree/way", folder / "outside/way");
                fs::create_directory_symlink("../outside", folder / "tree/way");
            }
        };
        const std::string failure
            = failureOf([&] { Storage::forEachBelow(folder / "tree", Storage::Unreadable::PassOver, use); });
        EXPECT_EQ(seen, reached);
        EXPECT_EQ(failure.empty(), reached < all); // it cannot come back from a folder that was moved away
    }
}

TEST(DeviceAnchor, opensAndMakesFoldersOfTheDeviceAlone)
{
    const TemporaryFolder folder;
    makeDevice(folder);
    fs::create_directories(folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");
    folder.write("file", "x");
    const Storage::DeviceAnchor anchor(folder / ""); // a separator at the end changes nothing
    const auto make
        = [&](const char *relative) { return anchor.folder(relative, Storage::DeviceAnchor::Missing::Make); };
    const std::pair<const char *, const char *> rows[] = {{"made/../b", "Nieprawidłowa ścieżka."},
        {"./b", "Nieprawidłowa ścieżka."}, {"link/b", "Ścieżka zawiera dowiązanie: link"},
        {"dangling/b", "Ścieżka zawiera dowiązanie: dangling"}, {"file/b", "Folder jest zajęty przez plik: file"}};
    for (const auto &[relative, refusal] : rows) {
        EXPECT_EQ(messageOf([&] { make(relative); }), refusal);
    }
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
    EXPECT_THROW((void)anchor.folder("Music/A"), std::system_error);
    EXPECT_EQ(make("/Music//A/").path, folder / "Music/A");
    EXPECT_EQ(make("").path, folder.path());
    EXPECT_TRUE(fs::is_directory(folder / "Music/A"));
    fs::remove_all(folder / ".rockbox");
    EXPECT_EQ(messageOf([&] { anchor.require(); }), "Ten folder nie zawiera katalogu .rockbox.");
}
