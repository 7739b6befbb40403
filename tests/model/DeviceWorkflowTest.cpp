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

    void goesByWhatHappenedDuringADiscovery()
    {
        for (const bool leaves : {true, false}) { // or is chosen
            ModelDesk desk;
            const Device device = desk.makeDevice("IPOD", true);
            ModelEnvironment environment = desk.environment();
            environment.deviceDiscovery = [leaves, device, count = desk.discoveries] { // the first looked too early
                return (++*count == 1) == leaves ? std::vector {device} : std::vector<Device>();
            };
            bool wrong = false;
            std::unique_ptr<MarluneModel> model;
            {
                const HeldJobs held;
                model = std::make_unique<MarluneModel>(std::move(environment));
                leaves ? model->volumeUnmounted(device.root) : model->select(device);
                connect(model.get(), &MarluneModel::deviceChanged, this,
                    [&] { wrong = wrong || model->device().has_value() == leaves; });
            }
            desk.waitForJobs(*model);
            QVERIFY(!wrong && model->device().has_value() != leaves && model->devices().empty() == leaves);
            QCOMPARE(desk.discoveries->load(), 2);
        }
    }

    void disconnectsALostVolumeAndKeepsALostFolder()
    {
        Connected connected;
        auto &[desk, device, model] = connected;
        desk.folder.write("IPOD/Music/a.mp3", "x");
        desk.run(*model, &MarluneModel::scanDeviceMusic);
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
        QCOMPARE(model->status(), u"iPod został odłączony"_s);

        model->select(desk.makeDevice("folder", false));
        DeviceReading told = model->deviceReading(); // as tracksChanged() tells it, though there is no music
        QCOMPARE(told, DeviceReading::None);
        connect(model.get(), &MarluneModel::tracksChanged, this, [&] { told = model->deviceReading(); });
        desk.run(*model, &MarluneModel::scanDeviceMusic);
        QCOMPARE(told, DeviceReading::Complete);
        desk.run(*model, &MarluneModel::refresh);
        QVERIFY(model->device() && model->device()->name == u"folder"_s);
    }

    void selectsAChosenFolderIfItIsADevice()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("folder", false);
        const auto model = desk.start();
        model->chooseDevice();
        desk.answer(*model, desk.folder / "config");
        QCOMPARE(model->alert().value_or(QString()), u"Ten folder nie zawiera katalogu .rockbox."_s);
        QVERIFY(!model->device());
        desk.answer(*model, device.root);
        QVERIFY(model->device() && model->device()->root == device.root);

        const Device later = desk.makeDevice("later", false);
        desk.hold(*model, [&] {
            desk.panels.answer({device.root}); // takes longer to look at than the choice after it
            model->select(later);
        });
        QVERIFY(model->device() == later);
    }

    void saysWhenADiskHangs()
    {
        ModelDesk desk;
        std::promise<void> answer;
        ModelEnvironment environment = desk.environment();
        environment.deviceDiscovery = [hanging = answer.get_future().share(), device = desk.makeDevice("IPOD", true),
                                          count = desk.discoveries] {
            ++*count;
            hanging.wait();
            return std::vector {device};
        };
        environment.discoveryTimeout = std::chrono::milliseconds(30);
        MarluneModel model(std::move(environment));
        QTRY_VERIFY(model.status().startsWith(u"Urządzenie nie odpowiada."_s));
        desk.folder.write("Computer/a.mp3", "x");
        model.importURLs({desk.folder / "Computer"}, false, true); // the library stays usable
        QTRY_COMPARE(model.tracks().size(), 1U);
        model.volumeMounted();
        model.volumeMounted(); // one more look for several notices
        answer.set_value();
        QTRY_VERIFY(model.device());
        desk.waitForJobs(model);
        QCOMPARE(desk.discoveries->load(), 2);
    }

    void closesTheTrackOnADeviceAndOpensNoneWhileItIsEjected()
    {
        for (const bool stopped : {false, true}) {
            Connected connected;
            Track track;
            track.id = QUuid::createUuid();
            track.url = connected.device.root / "a.mp3";
            fs::copy_file(dataFile("media/variable-rate.mp3"), track.url);
            Playback &playback = connected.model->playback();
            const auto openOnDevice = [&] { return openFilesBelow(connected.device.root).size(); };
            std::size_t openAtEject = 1;
            connected.desk.ejector = [&](const fs::path &) { openAtEject = openOnDevice(); };
            playback.play(track, {});
            QTRY_VERIFY(playback.playing());
            QCOMPARE(openOnDevice(), 1U);
            if (stopped) {
                playback.stop(); // the player has not closed it yet
            }
            ModelDesk::hold(*connected.model, [&] {
                connected.model->eject();
                playback.play(track, {});
                QTRY_VERIFY(playback.playing() || playback.error());
            });
            QCOMPARE(openAtEject, 0U);
            QVERIFY(!playback.current());
            playback.play(track, {}); // of the next disk in this place
            QTRY_VERIFY(playback.playing());
        }
    }

    void ejectsOnlyAnIdleVolumeAndDropsASecondLongJob()
    {
        ModelDesk desk;
        std::vector<fs::path> ejected;
        desk.ejector = [&](const fs::path &root) { ejected.push_back(root); };
        desk.folder.write("first.mp3", "x");
        desk.folder.write("second.mp3", "x");
        const auto model = desk.start();
        model->eject(); // no device
        model->select(desk.makeDevice("folder", false));
        model->eject(); // no volume
        const Device device = desk.makeDevice("IPOD", true);
        model->select(device);
        desk.hold(*model, [&] {
            model->importURLs({desk.folder / "first.mp3"}, false, false);
            model->eject(); // not idle
            model->importURLs({desk.folder / "second.mp3"}, false, false); // nor is a second job begun
        });
        desk.hold(*model, [&] {
            model->checkDuplicates();
            model->eject();
        });
        QVERIFY(ejected.empty() && !model->alert());
        QCOMPARE(model->tracks().size(), 1U);
        desk.run(*model, &MarluneModel::eject);
        QCOMPARE(ejected, std::vector {device.root});
    }

    void tellsHowAnEjectEnded()
    {
        const std::tuple<bool, bool, const char *> rows[] = {{true, false, "Możesz odłączyć iPoda"},
            {false, true, "Gotowy na Twoją muzykę"}, {true, true, "iPod został odłączony"}};
        for (const auto &[unmounts, fails, status] : rows) {
            Connected connected;
            auto &[desk, device, model] = connected;
            desk.ejector = [&, gone = unmounts, refused = fails](const fs::path &root) {
                if (gone) { // the kernel reports it before the drive has let go
                    desk.found->clear();
                    postToUi([&model, root] { model->volumeUnmounted(root); });
                }
                if (refused) {
                    throw MarluneError(u"zajęty"_s);
                }
            };
            QStringList seen;
            connect(model.get(), &MarluneModel::statusChanged, this, [&] { seen.append(model->status()); });
            Track elsewhere;
            elsewhere.url = desk.folder / "on the computer.mp3";
            model->playback().play(elsewhere, {});
            desk.run(*model, &MarluneModel::eject);
            QCOMPARE(model->status(), QString::fromUtf8(status));
            QVERIFY(fails || !seen.contains(u"iPod został odłączony"_s)); // done is no loss
            QCOMPARE(model->alert().value_or(QString()), fails ? u"zajęty"_s : QString());
            QCOMPARE(model->device().has_value(), !unmounts);
            QCOMPARE(model->playback().current().has_value(), !unmounts);
            QVERIFY(!model->busy());
        }
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
        QVERIFY(model->deviceTracks().empty() && model->device() && model->deviceReading() == DeviceReading::None);
        QCOMPARE(model->status(), u"iPod został zmieniony podczas odczytu. Odczytaj muzykę jeszcze raz."_s);
    }
};

QTEST_GUILESS_MAIN(DeviceWorkflowTest)
#include "DeviceWorkflowTest.moc"
