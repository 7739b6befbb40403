#include "storage/PathSafety.h"

#include "support/FailingDisk.h"
#include "support/Messages.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

namespace {

const QString polish = QStringLiteral("ż");
const QString flag = QStringLiteral("\U0001F1F5\U0001F1F1"); // two code points, four UTF-16 units, one character
const QString combined = QStringLiteral("z\u0307");

} // namespace

TEST(SafeName, makesOneComponentOfAnyText)
{
    const std::pair<QString, QString> rows[] = {
        {QStringLiteral("AC/DC"), QStringLiteral("AC-DC")},
        {QStringLiteral("a//b"), QStringLiteral("a--b")},
        {QStringLiteral("a:b\\c"), QStringLiteral("a-b-c")},
        {QStringLiteral("a\nb\rc") + QChar(u'\0') + u'd', QStringLiteral("a-b-c-d")},
        {QStringLiteral("/"), QStringLiteral("-")},
        {QStringLiteral("  "), QStringLiteral("Bez nazwy")},
        {QString(), QStringLiteral("Bez nazwy")},
        {QStringLiteral("."), QStringLiteral("Bez nazwy")},
        {QStringLiteral(" .. "), QStringLiteral("Bez nazwy")},
        {QStringLiteral("..."), QStringLiteral("...")},
        {QStringLiteral("\u00A0\tco? jak*\u2003"), QStringLiteral("co? jak*")},
        {QStringLiteral(".hidden."), QStringLiteral(".hidden.")},
        {polish.repeated(161), polish.repeated(160)},
        {flag.repeated(161), flag.repeated(160)},
        {combined.repeated(161), combined.repeated(160)},
        {QString(159, u'a') + QStringLiteral(" b.flac"), QString(159, u'a') + u' '},
    };
    for (const auto &[text, name] : rows) {
        EXPECT_EQ(safeName(text), name) << text;
    }
}

TEST(VolumeName, followsTheRulesOfTheVolume)
{
    const std::pair<QString, QString> rows[] = {
        {QStringLiteral("a*b:c<d>e?f\\g|h"), QStringLiteral("a_b_c_d_e_f_g_h")},
        {QStringLiteral("\"Live\""), QStringLiteral("'Live'")},
        {QStringLiteral("tab\there\x7F"), QStringLiteral("tab_here_")},
        {QStringLiteral("Kto tam?.. ."), QStringLiteral("Kto tam_")},
        {QStringLiteral("Utwór (2)."), QStringLiteral("Utwór (2)")},
        {QStringLiteral("..."), QStringLiteral("Bez nazwy")},
        {QStringLiteral("byte") + QChar(0xDCE9), QStringLiteral("byte_")},
        {flag.repeated(160), flag.repeated(63)},
        {polish.repeated(160), polish.repeated(160)},
    };
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

TEST(DeviceDirectory, makesTheMissingLevels)
{
    const TemporaryFolder folder;
    makeDevice(folder);
    for (const char *relative : {"/Music//A/", "Music/A"}) {
        EXPECT_EQ(Storage::directory(relative, folder.path()), folder / "Music/A");
        EXPECT_TRUE(std::filesystem::is_directory(folder / "Music/A"));
    }
    EXPECT_EQ(Storage::directory("//", folder.path()), folder.path());
}

TEST(DeviceDirectory, refusesPathsThatLeaveTheDevice)
{
    const TemporaryFolder folder;
    makeDevice(folder);
    std::filesystem::create_directories(folder / "elsewhere");
    std::filesystem::create_directory_symlink(folder / "elsewhere", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    folder.write("file", "x");
    const auto message
        = [&](const char *relative) { return messageOf([&] { (void)Storage::directory(relative, folder.path()); }); };
    const std::pair<const char *, const char *> rows[] = {{"made/../b", "Nieprawidłowa ścieżka."},
        {"./b", "Nieprawidłowa ścieżka."}, {"link/b", "Ścieżka zawiera dowiązanie: link"},
        {"dangling/b", "Ścieżka zawiera dowiązanie: dangling"}, {"file/b", "Folder jest zajęty przez plik: file"}};
    for (const auto &[relative, refusal] : rows) {
        EXPECT_EQ(message(relative), refusal);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / "elsewhere"));
    std::filesystem::remove_all(folder / ".rockbox");
    EXPECT_EQ(message("new"), "Ten folder nie zawiera katalogu .rockbox.");
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
}

TEST(DeviceDirectory, leavesWhatItMadeWhenTheDiskFails)
{
    for (int failAt = 1;; ++failAt) {
        const TemporaryFolder folder;
        makeDevice(folder);
        const FailingDisk disk(failAt, ENOSPC);
        const std::string failure = failureOf([&] { (void)Storage::directory("Music/A/B", folder.path()); });
        if (!FailingDisk::reached()) {
            EXPECT_EQ(failAt, 4); // three levels
            break;
        }
        EXPECT_NE(failure.find("No space left"), std::string::npos) << failure;
        EXPECT_EQ(std::filesystem::exists(folder / "Music"), failAt > 1);
        EXPECT_EQ(std::filesystem::exists(folder / "Music/A"), failAt > 2);
    }
}
