// A new user's road through the real window, by mouse and keyboard only: choose the device, add music, search, filter,
// queue, transfer, transfer again, lose the device in the middle.
#include "NewUser.h"

#include "artwork/Artwork.h"
#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"
#include "quality/CollectionQuality.h"

#include <QProcess>
#include <QScopeGuard>

#include <set>
#include <sstream>

namespace {

using FileMap = std::map<std::string, std::string>;

/// Adds what an album's folder on the device is to hold of a folder of the sample.
void expectFiles(FileMap &files, const std::filesystem::path &folder, const std::string &destination)
{
    for (const auto &[name, bytes] : filesBelow(folder)) {
        const QString safe = QString::fromStdString(name).replace(u':', u'-');
        if (!safe.endsWith(QStringLiteral(".jpg")) && !safe.endsWith(QStringLiteral(".png"))) {
            files[destination + safe.toStdString()] = bytes;
        }
    }
}

/// What lies in the device's music folder, without the covers of these albums, which are to be fit for the firmware.
FileMap withoutCovers(const std::filesystem::path &music, std::initializer_list<const char *> albums)
{
    FileMap files = filesBelow(music);
    for (const std::string album : albums) {
        const auto cover = files.extract(album + "/cover.jpeg");
        if (cover.empty() || Artwork::compatibilityIssue(QByteArray::fromStdString(cover.mapped()))) {
            files["no fit cover in " + album] = {};
        }
    }
    return files;
}

} // namespace

class WindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(std::filesystem::exists(sample / "Music"));
        MarluneApp::prepareApplication();
    }

    void refusesToShareItsSettingsWithASecondProgram()
    {
        NewUser user;
        QVERIFY_EXCEPTION_THROWN(MarluneApp::Program(user.setup()), MarluneError);
    }

    void takesMusicFromAFolderToADevice()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music");
        QVERIFY(model.tracks().size() > 40);
        QCOMPARE(std::size_t(model.queued().size()), model.tracks().size());
        QTRY_VERIFY(user.count() >= 3);
        user.clickNamed("clearQueueButton");
        QVERIFY(model.queued().isEmpty());

        user.searchFor("źródła");
        QTRY_COMPARE(user.count(), 1);
        user.searchFor("nothing has this name");
        QTRY_VERIFY(user.item("emptyState"));
        user.searchFor("");
        user.clickNamed("hiResCheck");
        QTRY_VERIFY(user.tile("Źródła i ujścia") && !user.tile("Ostatni kurs"));
        user.clickNamed("hiResCheck");

        queueTwoAlbums(user);
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        FileMap expected = filesBelow(sample / "iPod/Music");
        const std::size_t before = expected.size();
        expectFiles(expected, sample / "Music/Low Tide Almanac/Soundings/CD1", "Low Tide Almanac/Soundings/CD 1/");
        expectFiles(expected, sample / "Music/Low Tide Almanac/Soundings/CD2", "Low Tide Almanac/Soundings/CD 2/");
        expectFiles(expected, sample / "Music/AC-DC Revival/What Now?", "AC-DC Revival/What Now?/");
        QCOMPARE(expected.size() - before, 13U);
        const auto music = [&user] {
            return withoutCovers(user.device / "Music",
                {"Low Tide Almanac/Soundings/CD 1", "Low Tide Almanac/Soundings/CD 2", "AC-DC Revival/What Now?"});
        };
        QVERIFY(music() == expected);
        QVERIFY(model.alert()->startsWith(QStringLiteral("Wgrano: 13. Pominięto identyczne: 0.")));
        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk") && !model.alert());

        queueTwoAlbums(user);
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        QVERIFY(model.alert()->startsWith(QStringLiteral("Wgrano: 0. Pominięto identyczne: 13.")));
        QVERIFY(music() == expected);
        QTRY_VERIFY(user.item("alertOk"));
        QTest::keyClick(user.program.window(), Qt::Key_Escape);
        QTRY_VERIFY(!model.alert());
    }

    void putsFitCoversBesideAllMusicAndCleansTheDisk()
    {
        NewUser user;
        user.folder.write("IPOD/Music/Halcyon Ferry/Early Crossings/._02 Gangway.mp3", std::string("\0\5\x16\7", 4));
        user.begin(sample / "Music"); // covers embedded, of folders and beside tracks; JPEG, progressive too, and PNG
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(user.program.model().alert(), 60'000);
        QVERIFY(user.program.model().alert()->startsWith(QStringLiteral("Wgrano: ")));
        std::set<std::filesystem::path> folders;
        for (const std::filesystem::path &track : user.program.model().transferred()) {
            folders.insert(track.parent_path());
        }
        QVERIFY(folders.size() > 12);
        int bare = 0;
        for (const std::filesystem::path &folder : folders) {
            if (!std::filesystem::exists(folder / "cover.jpeg")) {
                ++bare;
                continue;
            }
            const QByteArray cover = QByteArray::fromStdString(fileBytes(folder / "cover.jpeg"));
            QVERIFY2(!Artwork::compatibilityIssue(cover), folder.c_str());
            QVERIFY2(QImage::fromData(cover).size() == QSize(500, 500), folder.c_str());
        }
        QCOMPARE(bare, 1); // the album without any cover
        QVERIFY(!std::filesystem::exists(user.device / "Music/Halcyon Ferry/Early Crossings/._02 Gangway.mp3"));
        QTRY_COMPARE(user.shownText("themeCount"), std::string("2 zainstalowanych motywów"));
    }

    void givesTheDeviceAThemeAndAPlaylistAndKeepsABackup()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music/Low Tide Almanac");
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        user.clickNamed("alertOk");
        const FileMap before = filesBelow(user.device / ".rockbox");
        const std::filesystem::path package = packedTheme(user, QStringLiteral("Glacier"));
        QTRY_COMPARE(user.shownText("themeCount"), std::string("1 zainstalowanych motywów"));
        model.installTheme();
        user.panels.answer({package});
        QTRY_COMPARE(user.shownText("themeCount"), std::string("2 zainstalowanych motywów"));
        QVERIFY(filesBelow(user.device / ".rockbox") == before);
        const auto picture = model.themePreviews().value(model.themes().at(1).id()).playing;
        QVERIFY(picture);
        const QString file = QString::fromStdString(std::get<std::filesystem::path>(*picture).string());
        QCOMPARE(QImage(file).size(), QSize(320, 240));
        QTRY_COMPARE(model.backups().size(), 3U); // of the settings; two of covers were made by the transfer
        const std::filesystem::path backup = model.backups().at(2);
        QCOMPARE(fileBytes(backup / "config.cfg"), before.at("config.cfg"));
        QTRY_VERIFY(user.item("alertOk"));
        user.clickNamed("alertOk");

        model.setPlaylistName(QStringLiteral("Rejs"));
        model.makePlaylist();
        QTRY_COMPARE(user.shownText("statusText"), std::string("Zapisano Rejs.m3u8"));
        std::istringstream lines(fileBytes(user.device / "Playlists/Rejs.m3u8"));
        std::string line;
        QVERIFY(std::getline(lines, line) && line == "#EXTM3U");
        int tracks = 0;
        for (; std::getline(lines, line); ++tracks) {
            QVERIFY2(std::filesystem::is_regular_file(user.device / line.substr(1)), line.c_str());
        }
        QCOMPARE(tracks, 8);
    }

    void putsTheCollectionInOrder()
    {
        CannedServer server({{},
            CannedServer::answer(
                "200 OK", QByteArray::fromStdString(fileBytes(sample / "Music/Halcyon Ferry/Slow Water/cover.jpg")))});
        NewUser user({.catalogue = server.root(), .site = server.root(), .archive = server.root()});
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music");
        const auto bare = [&model] {
            const auto albums = model.albums();
            return std::find_if(
                albums->begin(), albums->end(), [](const auto &album) { return !album->artworkBytes(); });
        };
        const std::shared_ptr<const Album> album = *bare();
        server.answers[0] = CannedServer::answer("200 OK",
            QStringLiteral(
                R"({"release-groups":[{"id":"0cd1dd5b-3c5e-4d3a-9f0e-000000000001","score":100,"title":"%1",)"
                R"("artist-credit":[{"name":"%2"}]}]})")
                .arg(album->title, album->artist)
                .toUtf8());
        model.setSection(Section::Quality);
        QTRY_VERIFY(user.item("issueList") && user.item("issueList")->property("count").toInt() > 0);
        const int before = user.item("issueList")->property("count").toInt();
        user.clickNamed("findCoversButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        QVERIFY(model.alert()->startsWith(QStringLiteral("Dodano okładki: 1. Do wyboru ręcznie: 0. Niedostępne: 0.")));
        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk") && !model.alert());
        QVERIFY(bare() == model.albums()->end());
        QTRY_COMPARE(user.item("issueList")->property("count").toInt(), before - 1);

        user.clickNamed("repairCoversButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        QVERIFY2(model.alert()->contains(QStringLiteral("Nie udało się naprawić: 0.")), qPrintable(*model.alert()));
        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk"));
        user.clickNamed("checkDuplicatesButton");
        QTRY_COMPARE_WITH_TIMEOUT(model.status(), QStringLiteral("Sprawdzanie duplikatów zakończone"), 30'000);
        const std::vector<QualityIssue> left = CollectionQuality::inspect(model.tracks(), std::nullopt);
        QVERIFY(std::none_of(
            left.begin(), left.end(), [](const QualityIssue &issue) { return issue.kind == QualityKind::Covers; }));
        QTRY_COMPARE(
            user.item("issueList")->property("count").toULongLong(), left.size() + model.duplicateIssues().size());
    }

    void playsAnAlbumAndSkips()
    {
        NewUser user;
        Playback &playback = user.program.model().playback();
        user.begin(sample / "Music/Low Tide Almanac");
        QTRY_VERIFY(user.tile("Soundings"));
        QQuickItem *const tile = user.tile("Soundings");
        QTest::mouseMove(user.program.window(), tile->mapToScene({20, 20}).toPoint());
        QTRY_VERIFY(user.item("playButton", tile));
        user.click(user.item("playButton", tile));
        QTRY_VERIFY(playback.playing());
        const std::vector<Track> tracks = user.program.model().albums()->front()->tracks;
        user.clickNamed("nextButton");
        QTRY_VERIFY(playback.playing() && playback.current()->id != tracks[0].id);
        QCOMPARE(user.shownText("heading"),
            QStringLiteral("Odsłuch na Macu · %1 · %2").arg(playback.current()->title, tracks[0].artist).toStdString());
        user.clickNamed("stopButton");
        QTRY_VERIFY(!playback.current() && !user.item("stopButton"));
    }

    void goesOnWhenTheDeviceIsTakenAwayInTheMiddle()
    {
        // Set before any thread of the program runs.
        diskCalls().fsync = syncAndPullOut;
        const auto restore = qScopeGuard([] { diskCalls() = DiskCalls::system(); });
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music/Low Tide Almanac");
        s_device = user.device;
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
        QVERIFY(
            model.alert()->startsWith(QStringLiteral("Ten folder nie zawiera katalogu .rockbox.\n\nCzęść utworów")));
        QVERIFY(!model.busy());
        QCOMPARE(model.queued().size(), 8);
        QCOMPARE(filesBelow(user.device / "Music/Low Tide Almanac").size(), 2U);
        QVERIFY(!holdsPartialFile(user.device));

        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk"));
        user.searchFor("soundings");
        QTRY_COMPARE(user.count(), 1);
        QCOMPARE(user.shownText("statusText"), std::string("Transfer przerwany"));
    }

private:
    /// The theme in a package of its own, and no longer on the device.
    static std::filesystem::path packedTheme(NewUser &user, const QString &name)
    {
        const std::filesystem::path package = user.folder / "theme.zip";
        QProcess zip;
        zip.setWorkingDirectory(QString::fromStdString(user.device.string()));
        zip.start(QStringLiteral("zip"),
            {QStringLiteral("-qr"), QString::fromStdString(package.string()), QStringLiteral(".rockbox"),
                QStringLiteral("-i"), u'*' + name + u'*'});
        if (!zip.waitForFinished() || zip.exitCode() != 0) {
            throw std::runtime_error("no package");
        }
        for (const auto &[file, bytes] : filesBelow(user.device / ".rockbox")) {
            if (file.find(name.toStdString()) != std::string::npos) {
                std::filesystem::remove(user.device / ".rockbox" / file);
            }
        }
        user.program.model().refresh();
        return package;
    }

    static void queueTwoAlbums(NewUser &user)
    {
        for (const auto &[text, title] : {std::pair("soundings", "Soundings"), std::pair("what now", "What Now?")}) {
            user.searchFor(text);
            QTRY_VERIFY(user.count() == 1 && user.tile(title));
            user.click(user.item("queueButton", user.tile(title)));
        }
        QCOMPARE(user.program.model().queue().size(), 13U);
        user.searchFor("");
    }

    /// The disk is pulled out while the third file is on its way to it.
    static int syncAndPullOut(int descriptor)
    {
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        const std::string file = std::filesystem::read_symlink(link).string();
        if (file.find("/IPOD/Music/") != std::string::npos && ++s_synced == 3) {
            std::filesystem::remove_all(s_device / ".rockbox");
        }
        return ::fsync(descriptor);
    }

    static inline std::filesystem::path s_device;
    static inline std::atomic<int> s_synced = 0;
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
