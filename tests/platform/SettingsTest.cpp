#include "platform/files/Settings.h"

#include "platform/files/Files.h"

#include "support/FailingDisk.h"
#include "support/Testing.h"

TEST(Settings, comeBackAtTheNextStart)
{
    const TemporaryFolder folder;
    const auto file = folder / "settings.json"; // a link, which stays one
    fs::create_symlink(folder.write("dotfiles/marlune.json", "{}"), file);
    const QString plain = u"tileSize"_s;
    const QString oddKey = u"finish-/media/a/IPOD\""_s + QChar(u'\0') + u"ż"_s;
    const QStringList texts {u"/a/ż.mp3"_s, Files::text(std::string("caf\xE9.mp3")), QString()};
    {
        Settings settings(file);
        settings.setText(oddKey, u"czarny"_s);
        settings.setNumber(plain, 181.5);
        settings.setTexts(u"list"_s, texts);
        settings.insertTexts(u"map"_s, {{oddKey, u"/w"_s}, {plain, u"/y"_s}});
        settings.insertTexts(u"map"_s, {{oddKey, u"/x"_s}});
        settings.setText(u"gone"_s, u"x"_s);
        settings.remove(u"gone"_s);
    }
    const Settings settings(file);
    EXPECT_EQ(settings.text(oddKey), u"czarny"_s);
    EXPECT_EQ(settings.number(plain), 181.5);
    EXPECT_EQ(settings.texts(u"list"_s), texts);
    EXPECT_EQ(settings.textMap(u"map"_s), (QMap<QString, QString> {{oddKey, u"/x"_s}, {plain, u"/y"_s}}));
    EXPECT_FALSE(settings.text(u"gone"_s));
    EXPECT_FALSE(settings.text(plain)); // another type
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_FALSE(holdsPartialFile(folder.path()));
}

TEST(Settings, setADamagedFileAside)
{
    const TemporaryFolder folder;
    folder.write("settings.json", "{\"viewMode\": \"Utwo");
    Settings settings(folder / "settings.json");
    EXPECT_FALSE(settings.text(u"viewMode"_s));
    settings.setText(u"viewMode"_s, u"Albumy"_s);
    settings.flush();
    const auto files = filesBelow(folder.path());
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files.rbegin()->first.rfind("settings.json.damaged-", 0), 0U);
    EXPECT_EQ(files.rbegin()->second, "{\"viewMode\": \"Utwo");
}

TEST(Settings, reportAFailureAndKeepTheOldFile)
{
    const TemporaryFolder folder;
    const auto file = folder.write("settings.json", "{\"viewMode\": \"old\"}");
    Settings settings(file);
    std::vector<QString> reasons;
    settings.onWriteFailure([&](const QString &reason) { reasons.push_back(reason); });
    {
        const FailingDisk disk(2, ENOSPC);
        settings.setText(u"viewMode"_s, u"new"_s);
        settings.flush();
    }
    ASSERT_EQ(reasons.size(), 1U);
    EXPECT_NE(fileBytes(file).find("old"), std::string::npos);
    settings.setText(u"sortMode"_s, u"Rok"_s);
    settings.flush();
    EXPECT_EQ(Settings(file).text(u"viewMode"_s), u"new"_s); // went out with the next change

    // What cannot be read may be whole: it is not replaced.
    fs::resize_file(folder.write("large.json", ""), 256'000'000); // one that it reads is smaller
    fs::create_symlink(folder / "unmounted/settings.json", folder / "away.json");
    for (const char *name : {"large.json", "away.json"}) {
        Settings unread(folder / name);
        QString reason;
        unread.onWriteFailure([&](const QString &told) { reason = told; });
        unread.setText(u"sortMode"_s, u"Rok"_s);
        unread.flush();
        EXPECT_TRUE(reason.startsWith(u"Pliku ustawień nie można odczytać"_s)) << name;
    }
    EXPECT_EQ(fs::file_size(folder / "large.json"), 256'000'000U);
    EXPECT_TRUE(fs::is_symlink(folder / "away.json"));
}
