#include "platform/files/Settings.h"

#include "platform/files/Files.h"

#include "support/FailingDisk.h"
#include "support/SampleDevice.h"

#include <gtest/gtest.h>

TEST(Settings, comeBackAtTheNextStart)
{
    const TemporaryFolder folder;
    const auto file = folder / "config/Marlune/settings.json";
    const QString plain = QStringLiteral("tileSize");
    const QString oddKey = QStringLiteral("finish-/media/a/IPOD\"") + QChar(u'\0') + QStringLiteral("ż");
    const QStringList texts {QStringLiteral("/a/ż.mp3"), Files::text(std::string("caf\xE9.mp3")), QString()};
    {
        Settings settings(file);
        settings.setText(oddKey, QStringLiteral("czarny"));
        settings.setNumber(plain, 181.5);
        settings.setTexts(QStringLiteral("list"), texts);
        settings.insertTexts(QStringLiteral("map"), {{oddKey, QStringLiteral("/w")}, {plain, QStringLiteral("/y")}});
        settings.insertTexts(QStringLiteral("map"), {{oddKey, QStringLiteral("/x")}});
        settings.setText(QStringLiteral("gone"), QStringLiteral("x"));
        settings.remove(QStringLiteral("gone"));
    }
    const Settings settings(file);
    EXPECT_EQ(settings.text(oddKey), QStringLiteral("czarny"));
    EXPECT_EQ(settings.number(plain), 181.5);
    EXPECT_EQ(settings.texts(QStringLiteral("list")), texts);
    EXPECT_EQ(settings.textMap(QStringLiteral("map")),
        (QMap<QString, QString> {{oddKey, QStringLiteral("/x")}, {plain, QStringLiteral("/y")}}));
    EXPECT_FALSE(settings.text(QStringLiteral("gone")));
    EXPECT_FALSE(settings.text(plain)); // another type
    EXPECT_FALSE(holdsPartialFile(folder.path()));
}

TEST(Settings, setADamagedFileAside)
{
    const TemporaryFolder folder;
    folder.write("settings.json", "{\"viewMode\": \"Utwo");
    Settings settings(folder / "settings.json");
    EXPECT_FALSE(settings.text(QStringLiteral("viewMode")));
    settings.setText(QStringLiteral("viewMode"), QStringLiteral("Albumy"));
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
        settings.setText(QStringLiteral("viewMode"), QStringLiteral("new"));
        settings.flush();
    }
    ASSERT_EQ(reasons.size(), 1U);
    EXPECT_NE(fileBytes(file).find("old"), std::string::npos);
    settings.setText(QStringLiteral("sortMode"), QStringLiteral("Rok"));
    settings.flush();
    EXPECT_EQ(Settings(file).text(QStringLiteral("viewMode")), QStringLiteral("new")); // went out with the next change

    // What cannot be read may be whole: it is not replaced.
    std::filesystem::resize_file(folder.write("large.json", ""), 256'000'000); // one that it reads is smaller
    std::filesystem::create_symlink(folder / "unmounted/settings.json", folder / "away.json");
    for (const char *name : {"large.json", "away.json"}) {
        Settings unread(folder / name);
        QString reason;
        unread.onWriteFailure([&](const QString &told) { reason = told; });
        unread.setText(QStringLiteral("sortMode"), QStringLiteral("Rok"));
        unread.flush();
        EXPECT_TRUE(reason.startsWith(QStringLiteral("Pliku ustawień nie można odczytać"))) << name;
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "large.json"), 256'000'000U);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "away.json"));
}

TEST(Settings, leaveALinkToTheFileALink)
{
    const TemporaryFolder folder;
    const auto target = folder.write("dotfiles/marlune.json", "{}");
    std::filesystem::create_symlink(target, folder / "settings.json");
    {
        Settings settings(folder / "settings.json");
        settings.setText(QStringLiteral("sortMode"), QStringLiteral("Rok"));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "settings.json"));
    EXPECT_NE(fileBytes(target).find("Rok"), std::string::npos);
}
