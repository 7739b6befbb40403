// What the selected device holds: read in the background, landed only while it is still wanted.
#include "support/ModelDesk.h"

#include <QSignalSpy>

#include <latch>

namespace {

/// Keeps the background from starting anything as long as it lives.
class HeldBackground {
public:
    HeldBackground()
    {
        QThreadPool &pool = BackgroundJobs::pool(JobPriority::Utility);
        for (int i = 0; i < pool.maxThreadCount(); ++i) {
            BackgroundJobs::startOn(pool, [gate = m_gate] { gate->wait(); });
        }
    }
    ~HeldBackground() { m_gate->count_down(); }
    HeldBackground(const HeldBackground &) = delete;
    HeldBackground &operator=(const HeldBackground &) = delete;

private:
    std::shared_ptr<std::latch> m_gate = std::make_shared<std::latch>(1);
};

std::vector<std::string> namesOf(const MarluneModel &model)
{
    std::vector<std::string> names;
    for (const Theme &theme : model.themes()) {
        names.push_back(theme.name().toStdString());
    }
    return names;
}

} // namespace

class DeviceContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheDeviceHolds()
    {
        ModelDesk desk;
        const auto model = desk.start();
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        desk.folder.write("IPOD/.rockbox/themes/B.cfg", "wps: /.rockbox/wps/b.wps\r\n");
        desk.folder.write("IPOD/.rockbox/themes/a.cfg", "\xFF wps");
        desk.folder.write("IPOD/.rockbox/themes/a.png", "x");
        desk.folder.write("IPOD/.rockbox/config.cfg", "wps: /.rockbox/wps/b.wps\n");
        for (const char *name : {"MIX.M3U", "a.m3u8", "note.txt", "folder.m3u/x"}) {
            desk.folder.write(std::filesystem::path("IPOD/Playlists") / name, "x");
        }
        model->refresh();
        desk.waitForJobs(*model);
        QCOMPARE(namesOf(*model), (std::vector<std::string> {"a", "B"}));
        QCOMPARE(model->themePreviews().keys(), QStringList(model->themes()[0].id()));
        QCOMPARE(model->themeSettings().size(), 2);
        QCOMPARE(model->deviceInfo().value(QStringLiteral("Target")), QStringLiteral("ipodvideo"));
        QCOMPARE(model->playlists(),
            (std::vector<std::filesystem::path> {device.root / "Playlists/MIX.M3U", device.root / "Playlists/a.m3u8"}));
        QVERIFY(model->configuredTheme() == model->themes()[1]);

        // A refresh sees what is new, keeps previews of what is gone, and says nothing of what stayed.
        std::filesystem::remove(device.root / ".rockbox/themes/a.cfg");
        const QSignalSpy previews(model.get(), &MarluneModel::themePreviewsChanged);
        const QSignalSpy playlists(model.get(), &MarluneModel::playlistsChanged);
        model->refresh();
        desk.waitForJobs(*model);
        QCOMPARE(namesOf(*model), (std::vector<std::string> {"B"}));
        QCOMPARE(model->themePreviews().size(), 1);
        QCOMPARE(previews.count() + playlists.count(), 0);

        model->volumeUnmounted(device.root);
        QVERIFY(model->themes().empty() && model->playlists().empty() && model->themeSettings().isEmpty());
        QVERIFY(model->deviceInfo().isEmpty() && model->deviceConfig().isEmpty());
        QVERIFY(!model->configuredTheme());
        QVERIFY(!model->alert());
        desk.folder.write("other/.rockbox/themes/c.cfg", "x");
        model->select(Device::inspect(desk.folder / "other"));
        QVERIFY(model->themePreviews().isEmpty());
    }

    void anEjectedDeviceLeavesItsSettings()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        desk.folder.write("IPOD/.rockbox/themes/a.cfg", "a: b");
        *desk.found = {device};
        const auto model = desk.start();
        QCOMPARE(model->themes().size(), 1U);
        desk.ejector = [&](const std::filesystem::path &) { desk.found->clear(); };
        model->eject();
        desk.waitForJobs(*model);
        QVERIFY(model->themes().empty());
        QVERIFY(!model->deviceInfo().isEmpty() && !model->themeSettings().isEmpty());
    }

    void onlyTheLastSelectionLands()
    {
        ModelDesk desk;
        const auto model = desk.start();
        const Device many = desk.makeDevice("many", false);
        for (int i = 0; i < 2000; ++i) {
            desk.folder.write("many/.rockbox/themes/" + std::to_string(i) + ".cfg",
                "wps: /.rockbox/wps/" + std::to_string(i) + ".wps\n");
        }
        const Device few = desk.makeDevice("few", false);
        desk.folder.write("few/.rockbox/themes/one.cfg", "a: b");
        const QSignalSpy landed(model.get(), &MarluneModel::themesChanged);
        {
            HeldBackground held;
            model->select(many);
            model->select(few);
        }
        desk.waitForJobs(*model);
        QCOMPARE(namesOf(*model), (std::vector<std::string> {"one"}));
        QCOMPARE(landed.count(), 1);

        QElapsedTimer time;
        time.start();
        model->select(many);
        desk.waitForJobs(*model);
        QVERIFY2(time.elapsed() < 5000, qPrintable(QString::number(time.elapsed())));
        QCOMPARE(namesOf(*model).size(), 2000U);
        QCOMPARE(namesOf(*model)[10], std::string("10"));
    }

    void nothingLandsOfADeviceTakenAway()
    {
        ModelDesk desk;
        const auto model = desk.start();
        const Device device = desk.makeDevice("IPOD", true);
        desk.folder.write("IPOD/.rockbox/themes/a.cfg", "a: b");
        const QSignalSpy landed(model.get(), &MarluneModel::themesChanged);
        {
            HeldBackground held;
            model->select(device);
            model->volumeUnmounted(device.root);
        }
        desk.waitForJobs(*model);
        {
            HeldBackground held;
            model->select(device);
            std::filesystem::remove_all(device.root);
        }
        desk.waitForJobs(*model);
        QVERIFY(!model->alert());
        QCOMPARE(landed.count(), 0);
        QVERIFY(model->deviceInfo().isEmpty());
    }

    void theConfiguredThemeSharesItsScreens_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<QString>("expected");
        QTest::newRow("both screens") << "wps: w\nsbs: s2" << "c";
        QTest::newRow("no match of the menu") << "wps: w\nsbs: s3" << "a";
        QTest::newRow("no menu configured") << "wps: w" << "a";
        QTest::newRow("another screen") << "wps: W\nsbs: s2" << "";
        QTest::newRow("no screen") << "sbs: s2" << "";
    }
    void theConfiguredThemeSharesItsScreens()
    {
        QFETCH(QString, config);
        QFETCH(QString, expected);
        ModelDesk desk;
        const Device device = desk.makeDevice("folder", false);
        desk.folder.write("folder/.rockbox/config.cfg", config.toStdString());
        desk.folder.write("folder/.rockbox/themes/a.cfg", "wps: w");
        desk.folder.write("folder/.rockbox/themes/b.cfg", "wps: w\nsbs: s1");
        desk.folder.write("folder/.rockbox/themes/c.cfg", "wps: w\nsbs: s2");
        desk.folder.write("folder/.rockbox/themes/d.cfg", "sbs: s2");
        const auto model = desk.start();
        model->select(device);
        desk.waitForJobs(*model);
        const std::optional<Theme> theme = model->configuredTheme();
        QCOMPARE(theme ? theme->name() : QString(), expected);
    }
};

QTEST_GUILESS_MAIN(DeviceContentTest)
#include "DeviceContentTest.moc"
