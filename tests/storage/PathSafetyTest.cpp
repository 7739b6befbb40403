#include "storage/PathSafety.h"
#include "storage/DeviceAnchor.h"
#include "storage/FolderTree.h"

#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using namespace Qt::StringLiterals;

using Rows = std::vector<std::pair<QString, QString>>;

const QString nameless = QStringLiteral("Bez nazwy");
const QString polish = QStringLiteral("ż");
const QString flag = QStringLiteral("\U0001F1F5\U0001F1F1"); // two code points, four UTF-16 units, one character
const QString combined = QStringLiteral("z\u0307");
const QString family = QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467");

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
    const QString ending = QStringLiteral(" (2).flac");
    EXPECT_EQ(volumeName(flag.repeated(160), Volumes::NameRules::Fat, ending), flag.repeated(61) + ending);
    EXPECT_EQ(volumeName(flag, Volumes::NameRules::Fat, QString(300, u'x')), QString(255, u'x'));
}

TEST(RejectLinks, findsALinkAnywhereInATree)
{
    const std::string message = "Paczka zawiera dowiązanie symboliczne.";
    for (const char *link : {"tree/a/b/c/link", "tree/.hidden", "tree/a/.b"}) {
        const TemporaryFolder folder;
        folder.write("tree/a/b/c/file", "x");
        EXPECT_EQ(messageOf([&] { Storage::rejectLinks(folder / "tree"); }), "");
        std::filesystem::create_symlink("nowhere", folder / link);
        EXPECT_EQ(messageOf([&] { Storage::rejectLinks(folder / "tree"); }), message) << link;
        EXPECT_EQ(messageOf([&] { Storage::rejectLinks(folder / link); }), message) << link;
    }
}

TEST(ForEachBelow, goesNowhereElseWhateverHappensOnTheWay)
{
    constexpr std::size_t all = 22;
    for (const auto &[changeAt, reached] : std::map<std::size_t, std::size_t> {{1, 1}, {2, all}, {all, all}}) {
        const TemporaryFolder folder;
        folder.write("outside/d/d/secret", "x");
        std::filesystem::path deep = "tree/way";
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
                std::filesystem::rename(folder / "tree/way", folder / "outside/way");
                std::filesystem::create_directory_symlink("../outside", folder / "tree/way");
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
    std::filesystem::create_directories(folder / "elsewhere");
    std::filesystem::create_directory_symlink(folder / "elsewhere", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
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
    EXPECT_TRUE(std::filesystem::is_empty(folder / "elsewhere"));
    EXPECT_THROW((void)anchor.folder("Music/A"), std::system_error);
    EXPECT_EQ(make("/Music//A/").path, folder / "Music/A");
    EXPECT_EQ(make("").path, folder.path());
    EXPECT_TRUE(std::filesystem::is_directory(folder / "Music/A"));
    std::filesystem::remove_all(folder / ".rockbox");
    EXPECT_EQ(messageOf([&] { anchor.require(); }), "Ten folder nie zawiera katalogu .rockbox.");
}

TEST(DeviceAnchor, refusesWhateverElseHasComeToTheDevicesPlace)
{
    const std::string another = "W miejscu iPoda jest teraz inny dysk lub folder. Podłącz iPoda ponownie.";
    const std::string link = "Folder urządzenia nie może być dowiązaniem symbolicznym.";
    const TemporaryFolder memory("/dev/shm"); // another disk
    makeDevice(memory, "IPOD");
    struct Row {
        const char *moved;
        std::filesystem::path comes;
        bool asLink;
        std::string refusal;
    };
    for (const Row &row : {Row {"place", memory.path(), true, another}, {"disk/IPOD", "other", true, link},
             {"disk/IPOD", "other", false, another}}) {
        const TemporaryFolder folder;
        makeDevice(folder, "disk/IPOD");
        makeDevice(folder, "other");
        create_directory_symlink(folder / "disk", folder / "place");
        const Storage::DeviceAnchor anchor(folder / "place/IPOD");
        EXPECT_EQ(messageOf([&] { anchor.require(); }), "");
        rename(folder / row.moved, folder / "moved");
        row.asLink ? create_directory_symlink(folder / row.comes, folder / row.moved)
                   : rename(folder / row.comes, folder / row.moved);
        EXPECT_EQ(messageOf([&] { anchor.require(); }), row.refusal);
        EXPECT_EQ(messageOf([&] { (void)anchor.folder(""); }), another);
    }
}
