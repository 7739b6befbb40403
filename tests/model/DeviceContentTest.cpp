// What the selected device holds: read in the background, landed only while it is still wanted.
#include "support/FailingDisk.h"
#include "support/ModelDesk.h"

#include "platform/text/TextOrder.h"

#include <QImage>
#include <QSignalSpy>

namespace {

QStringList namesOf(const MarluneModel &model)
{
    QStringList names;
    std::ranges::transform(model.themes(), std::back_inserter(names), &Theme::name);
    return names;
}

} // namespace

class DeviceContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheDeviceHolds()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("IPOD", true);
        *desk.found = {device};
        desk.folder.write("IPOD/.rockbox/themes/B.cfg", "wps: w\r\n");
        desk.folder.write("IPOD/.rockbox/themes/a.cfg", "\xFF wps");
        desk.folder.write("IPOD/.rockbox/themes/a.png", "x");
        for (const char *name : {"MIX.M3U", "a.m3u8", "note.txt", "folder.m3u/x"}) {
            desk.folder.write(fs::path("IPOD/Playlists") / name, "x");
        }
        const auto model = desk.start();
        QCOMPARE(namesOf(*model), QStringList({u"a"_s, u"B"_s}));
        QCOMPARE(model->themePreviews().keys(), QStringList(model->themes()[0].id()));
        QCOMPARE(
            model->playlists(), (std::vector {device.root / "Playlists/MIX.M3U", device.root / "Playlists/a.m3u8"}));

        fs::remove(device.root / ".rockbox/themes/a.cfg");
        const QSignalSpy previews(model.get(), &MarluneModel::themePreviewsChanged);
        desk.run(*model, &MarluneModel::refresh); // keeps the previews that it does not see
        QCOMPARE(namesOf(*model), QStringList(u"B"_s));
        QCOMPARE(int(model->themePreviews().size() + previews.count()), 1);

        model->volumeUnmounted(desk.folder / "OTHER");
        QVERIFY(model->device() == device);
        model->volumeUnmounted(device.root);
        QVERIFY(model->themes().empty() && model->playlists().empty() && model->deviceInfo().isEmpty());
        QVERIFY(!model->alert());

        desk.folder.write("IPOD/.rockbox/themes/\u0141.cfg", "x");
        desk.folder.write("IPOD/.rockbox/themes/lz.cfg", "x");
        desk.waitForJobs(*model); // it is there again
        model->loadDeviceContent();
        QVERIFY(BackgroundJobs::drain(std::chrono::seconds(10))); // read in the order of one language
        TextOrder::setLanguage(TextOrder::Language::English);
        model->reorder(); // and landed in that of another
        desk.waitForJobs(*model);
        TextOrder::setLanguage(TextOrder::Language::Polish);
        QCOMPARE(namesOf(*model), QStringList({u"B"_s, u"\u0141"_s, u"lz"_s}));
    }

    void onlyTheLastSelectionLands()
    {
        ModelDesk desk;
        const auto model = desk.start();
        for (int i = 0; i < 2000; ++i) {
            desk.folder.write("many/.rockbox/themes/" + std::to_string(i) + ".cfg", "wps: /.rockbox/x.wps\n");
        }
        desk.folder.write("few/.rockbox/themes/one.cfg", "a: b");
        const Device many = desk.makeDevice("many", false);
        const Device few = desk.makeDevice("few", true);
        bool whole = true;
        QStringList landed;
        connect(model.get(), &MarluneModel::themesChanged, this, [&] {
            whole = whole && std::size_t(model->themeSettings().size()) == model->themes().size();
            landed += QString::number(model->themes().size());
        });
        desk.hold(*model, [&] {
            model->select(many);
            model->select(few);
            model->select(few);
        });
        model->select(many);
        desk.waitForJobs(*model);
        QVERIFY(whole && model->deviceVolume());
        QCOMPARE(landed, QStringList({u"1"_s, u"2000"_s}));
        desk.hold(*model, [&] {
            model->select(few);
            QVERIFY(!model->deviceVolume()); // of the other one
            fs::remove_all(few.root);
        });
        QVERIFY(model->themes().empty() && !model->alert());
    }

    void theConfiguredThemeSharesItsScreens()
    {
        ModelDesk desk;
        const auto model = desk.start();
        for (const auto &[name, text] :
            {std::pair("a", "wps: w"), {"b", "wps: w\nsbs: s1"}, {"c", "wps: w\nsbs: s2"}}) {
            desk.folder.write(std::string("IPOD/.rockbox/themes/") + name + ".cfg", text);
        }
        for (const auto &[config, expected] : {std::pair("wps: w\nsbs: s2", "c"), {"wps: w\nsbs: s3", "a"},
                 {"wps: w", "a"}, {"wps: W\nsbs: s2", ""}, {"sbs: s2", ""}}) {
            desk.folder.write("IPOD/.rockbox/config.cfg", config);
            model->select(desk.makeDevice("IPOD", false));
            desk.waitForJobs(*model);
            const std::optional<Theme> theme = model->configuredTheme();
            QCOMPARE(theme ? theme->name() : QString(), QString::fromLatin1(expected));
        }
    }

    void aChosenPictureStays()
    {
        ModelDesk desk;
        const Device device = desk.makeDevice("folder", false);
        const Theme theme {desk.folder.write("folder/.rockbox/themes/a.cfg", "wps: w")};
        desk.folder.write("folder/.rockbox/themes/a.png", "of the package");
        const fs::path front = dataFile("media/front.png");
        const fs::path other = front.parent_path() / "other.png";
        const fs::path large = desk.folder / "large.bmp";
        QVERIFY(QImage(3600, 3600, QImage::Format_RGB32).save(QString::fromStdString(large.string())));
        const auto choose = [&](MarluneModel &model, const fs::path &file) {
            model.chooseThemePreview(theme);
            desk.panels.answer({file});
        };
        const auto shows = [&](const MarluneModel &model, const fs::path &file) {
            const auto picture = model.themePreviews().value(theme.id()).playing;
            return picture && fileBytes(std::get<fs::path>(*picture)) == fileBytes(file);
        };
        {
            const auto model = desk.start();
            {
                const HeldJobs held {JobPriority::Utility};
                model->select(device); // is to read the device as it was before the choice
                choose(*model, front);
                QTRY_VERIFY(shows(*model, front));
            }
            desk.waitForJobs(*model);
            QVERIFY(shows(*model, front));
            choose(*model, large); // takes longer to read than the later choice
            choose(*model, other);
            choose(*model, theme.url); // a text
            desk.waitForJobs(*model);
            QVERIFY(shows(*model, other) && !model->alert());
        }
        *desk.found = {device};
        const auto model = desk.start();
        QVERIFY(shows(*model, other));
        desk.settings.flush(); // no thread writes while the calls are exchanged
        const FailingDisk disk(1, EIO, FailingDisk::Fault::Dead);
        choose(*model, front);
        desk.waitForJobs(*model);
        QVERIFY(model->alert() && shows(*model, other));
    }
};

QTEST_GUILESS_MAIN(DeviceContentTest)
#include "DeviceContentTest.moc"
