// Devices found, chosen, lost and ejected.
#include "support/ModelDesk.h"
#include "support/OpenFiles.h"

#include "platform/MarluneError.h"

#include <clocale>

namespace {

/// A model that has found one disk.
struct Connected {
    ModelDesk desk;
    Device device = desk.makeDevice("IPOD", true);
    std::unique_ptr<MarluneModel> model;

    Connected()
    {
        *desk.found = {device};
        model = desk.start();
    }
};

} // namespace

class DeviceWorkflowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { std::setlocale(LC_NUMERIC, "C"); } // for the player, as the program does

    void selectsASoleDeviceAndNeverOneOfTwo()
    {
        ModelDesk desk;
        Device one = desk.makeDevice("ONE", true);
        *desk.found = {one, desk.makeDevice("TWO", true)};
        const auto model = desk.start();
        QVERIFY(!model->device());
        QCOMPARE(model->devices().size(), 2U);
        for (const int available : {1, 2}) { // and follows its values
            one.available = available;
            *desk.found = {one};
            refresh(*model);
            QVERIFY(model->device() == one);
        }
    }

    void bringsBackNoDiskThatLeftDuringADiscovery()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        std::promise<void> answer;
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [slow = answer.get_future().share(), device, count = desk.discoveries] {
            if (++*count == 1) {
                slow.wait();
                return std::vector {device}; // it was there when this looked
            }
            return std::vector<Device> {};
        };
        MarluneModel model(std::move(environment));
        bool seen = false;
        connect(&model, &MarluneModel::deviceChanged, this, [&] { seen = true; });
        model.volumeUnmounted(device.root);
        answer.set_value();
        QTRY_COMPARE(desk.discoveries->load(), 2);
        desk.waitForJobs(model);
        QVERIFY(!seen && model.devices().empty());
    }

    void keepsADiskThatWasChosenDuringADiscovery()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [device, count = desk.discoveries] {
            return ++*count == 1 ? std::vector<Device>() : std::vector {device}; // the first looked too early
        };
        std::unique_ptr<MarluneModel> model;
        bool lost = false;
        {
            const HeldJobs held;
            model = std::make_unique<MarluneModel>(std::move(environment));
            model->select(device);
            connect(model.get(), &MarluneModel::deviceChanged, this, [&] { lost = lost || !model->device(); });
        }
        desk.waitForJobs(*model);
        QVERIFY(!lost && model->device() == device && model->devices().size() == 1);
    }

    void disconnectsALostVolumeAndKeepsALostFolder()
    {
        Connected connected;
        auto &[desk, device, model] = connected;
        desk.folder.write("IPOD/Music/a.mp3", "x");
        model->scanDeviceMusic();
        desk.waitForJobs(*model);
        model->toggleTrack(model->deviceTracks().front());
        model->select(device); // the same again changes nothing
        QCOMPARE(model->selectedOnDevice().size(), 1);
        desk.found->clear();
        {
            const HeldJobs others {JobPriority::Utility, JobPriority::UserInitiated}; // as by a disk that hangs
            model->refresh();
            QTRY_VERIFY(!model->device());
        }
        desk.waitForJobs(*model);
        QVERIFY(model->deviceTracks().empty() && model->selectedOnDevice().isEmpty());
        QVERIFY(model->libraryOnDevice());
        QCOMPARE(model->status(), QStringLiteral("iPod został odłączony"));

        model->select(desk.makeDevice("folder", false));
        refresh(*model);
        QVERIFY(model->device() && model->device()->name == QStringLiteral("folder"));
    }

    void hearsOfAnUnmountAtOnceAndLooksOnceMoreForSeveralNotices()
    {
        Connected connected;
        const auto &[desk, device, model] = connected;
        {
            const HeldJobs held;
            model->volumeUnmounted(desk.folder / "OTHER");
            QVERIFY(model->device() == device);
            model->volumeUnmounted(device.root);
            QVERIFY(!model->device());
            model->volumeMounted();
            model->refresh(); // dropped
        }
        desk.waitForJobs(*model);
        QCOMPARE(desk.discoveries->load(), 3); // at the start, at the first notice, for those that came meanwhile
    }

    void selectsAChosenFolderIfItIsADevice()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("folder", false);
        const auto model = desk.start();
        model->chooseDevice();
        desk.panels.answer({desk.folder / "config"});
        desk.waitForJobs(*model);
        QCOMPARE(model->alert().value_or(QString()), QStringLiteral("Ten folder nie zawiera katalogu .rockbox."));
        QVERIFY(!model->device());
        desk.panels.answer({device.root});
        desk.waitForJobs(*model);
        QVERIFY(model->device() && model->device()->root == device.root);

        const Device later = desk.makeDevice("later", false);
        {
            const HeldJobs held;
            desk.panels.answer({device.root}); // takes longer to look at than the choice after it
            model->select(later);
        }
        desk.waitForJobs(*model);
        QVERIFY(model->device() == later);
    }

    void saysWhenADiskHangs()
    {
        ModelDesk desk;
        std::promise<void> answer;
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [hanging = answer.get_future().share(), device = desk.makeDevice("IPOD", true)] {
            hanging.wait();
            return std::vector {device};
        };
        environment.discoveryTimeout = std::chrono::milliseconds(30);
        MarluneModel model(std::move(environment));
        QTRY_VERIFY(model.status().startsWith(QStringLiteral("Urządzenie nie odpowiada.")));
        desk.folder.write("Computer/a.mp3", "x");
        model.importURLs({desk.folder / "Computer"}, false, true); // the library stays usable
        QTRY_COMPARE(model.tracks().size(), 1U);
        answer.set_value();
        QTRY_VERIFY(model.device());
    }

    void closesTheTrackOnADeviceAndOpensNoneWhileItIsEjected()
    {
        for (const bool stopped : {false, true}) {
            Connected connected;
            Track track;
            track.id = QUuid::createUuid();
            track.url = connected.device.root / "a.mp3";
            std::filesystem::copy_file(
                std::filesystem::path(MARLUNE_SOURCE_DIR) / "tests/data/media/variable-rate.mp3", track.url);
            Playback &playback = connected.model->playback();
            const auto openOnDevice = [&] { return openFilesBelow(connected.device.root).size(); };
            std::size_t openAtEject = 1;
            connected.desk.ejector = [&](const std::filesystem::path &) { openAtEject = openOnDevice(); };
            playback.play(track, {});
            QTRY_VERIFY(playback.playing());
            QCOMPARE(openOnDevice(), 1U);
            if (stopped) {
                playback.stop(); // the player has not closed it yet
            }
            {
                const HeldJobs held;
                connected.model->eject();
                playback.play(track, {});
                QTRY_VERIFY(playback.playing() || playback.error());
            }
            ModelDesk::waitForJobs(*connected.model);
            QCOMPARE(openAtEject, 0U);
            QVERIFY(!playback.current());
            playback.play(track, {}); // of the next disk in this place
            QTRY_VERIFY(playback.playing());
        }
    }

    void ejectsOnlyAnIdleVolumeAndDropsASecondLongJob()
    {
        ModelDesk desk;
        std::vector<std::filesystem::path> ejected;
        desk.ejector = [&](const std::filesystem::path &root) { ejected.push_back(root); };
        desk.folder.write("first.mp3", "x");
        desk.folder.write("second.mp3", "x");
        const auto model = desk.start();
        model->eject(); // no device
        model->select(desk.makeDevice("folder", false));
        model->eject(); // no volume
        const Device device = desk.makeDevice("IPOD", true);
        model->select(device);
        {
            const HeldJobs held;
            model->importURLs({desk.folder / "first.mp3"}, false, false);
            model->eject(); // not idle
            model->importURLs({desk.folder / "second.mp3"}, false, false); // nor is a second job begun
        }
        desk.waitForJobs(*model);
        {
            const HeldJobs held;
            model->checkDuplicates();
            model->eject();
        }
        desk.waitForJobs(*model);
        QVERIFY(ejected.empty() && !model->alert());
        QCOMPARE(model->tracks().size(), 1U);
        model->eject();
        desk.waitForJobs(*model);
        QCOMPARE(ejected, std::vector {device.root});
    }

    void tellsHowAnEjectEnded()
    {
        const std::tuple<bool, bool, const char *> rows[] = {{true, false, "Możesz odłączyć iPoda"},
            {false, true, "Gotowy na Twoją muzykę"}, {true, true, "iPod został odłączony"}};
        for (const auto &[unmounts, fails, status] : rows) {
            Connected connected;
            auto &[desk, device, model] = connected;
            desk.ejector = [&, gone = unmounts, refused = fails](const std::filesystem::path &root) {
                if (gone) { // the kernel reports it before the drive has let go
                    desk.found->clear();
                    postToUi([&model, root] { model->volumeUnmounted(root); });
                }
                if (refused) {
                    throw MarluneError(QStringLiteral("zajęty"));
                }
            };
            QStringList seen;
            connect(model.get(), &MarluneModel::statusChanged, this, [&] { seen.append(model->status()); });
            Track elsewhere;
            elsewhere.url = desk.folder / "on the computer.mp3";
            model->playback().play(elsewhere, {});
            model->eject();
            desk.waitForJobs(*model);
            QCOMPARE(model->status(), QString::fromUtf8(status));
            QVERIFY(fails || !seen.contains(QStringLiteral("iPod został odłączony"))); // done is no loss
            QCOMPARE(model->alert().value_or(QString()), fails ? QStringLiteral("zajęty") : QString());
            QCOMPARE(model->device().has_value(), !unmounts);
            QCOMPARE(model->playback().current().has_value(), !unmounts);
            QVERIFY(!model->busy());
        }
    }

    void listsBackupsNewestFirst()
    {
        ModelDesk desk;
        for (const char *name : {"2026-01-02/x", "2026-01-10/x", ".hidden/x"}) {
            desk.folder.write(std::filesystem::path("data/Marlune/Backups") / name, "x");
        }
        const auto model = desk.start();
        QCOMPARE(model->backups().size(), 2U);
        QCOMPARE(model->backups()[0].filename().string(), std::string("2026-01-10"));
    }

    void dropsMusicOfADeviceThatWasExchangedMeanwhile()
    {
        ModelDesk desk;
        desk.folder.write("IPOD/Music/a.mp3", "x");
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        const auto model = desk.start();
        {
            const HeldJobs held {JobPriority::UserInitiated};
            model->scanDeviceMusic();
            model->volumeUnmounted(device.root); // another one comes to the same place
            QTRY_VERIFY(model->device());
        }
        desk.waitForJobs(*model);
        QVERIFY(model->deviceTracks().empty() && model->device());
        QCOMPARE(
            model->status(), QStringLiteral("iPod został zmieniony podczas odczytu. Odczytaj muzykę jeszcze raz."));
    }

private:
    static void refresh(MarluneModel &model)
    {
        model.refresh();
        ModelDesk::waitForJobs(model);
    }
};

QTEST_GUILESS_MAIN(DeviceWorkflowTest)
#include "DeviceWorkflowTest.moc"
