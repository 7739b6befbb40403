// Previews fetched from a catalogue of the test's own: what lands, and what a failure leaves as it was.
#include "support/CannedServer.h"
#include "support/CataloguePage.h"
#include "support/ModelDesk.h"

#include "platform/files/Files.h"

namespace {

using Then = CannedServer::Then;

const QString unavailable = u"Katalog jest niedostępny. Możesz dodać własne zrzuty."_s;

QString fetched(int count)
{
    return u"Podglądy katalogowe: %1. Wersja motywu może różnić się od zainstalowanej."_s.arg(count);
}

CannedServer::Answer page(int themes)
{
    return CannedServer::answer("200 OK", cataloguePage(catalogueEntries(themes)).toUtf8());
}

struct ThemedDesk : ModelDesk {
    Device device = makeDevice("IPOD", false);
    Theme own {folder.write("IPOD/.rockbox/themes/Amber 0 Dawn.cfg", "")};
    Theme packaged {folder.write("IPOD/.rockbox/themes/Amber 5 Dawn.cfg", "")};

    explicit ThemedDesk(const CannedServer &server)
    {
        themeSite = {server.root(), std::chrono::milliseconds(300)};
        folder.write("IPOD/.rockbox/themes/Amber 5 Dawn.png", "x");
        settings.setText(
            ThemePreview::settingsPrefix() + ThemePreview::key(own), Files::text(folder.write("own.jpg", "x")));
    }
};

} // namespace

class ThemePreviewsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comeOnceForADevice()
    {
        const CannedServer server({page(300)});
        ThemedDesk desk(server);
        const Theme bare {desk.folder.write("IPOD/.rockbox/themes/Rock Roll 3 Dawn.cfg", "")};
        const auto model = desk.start();
        model->fetchThemePreviews(); // of no device
        model->select(desk.device);
        QTRY_COMPARE(model->themePreviewStatus(), fetched(3));
        QCOMPARE(model->themePreviews()[desk.own.id()].source, u"Twój zrzut"_s);
        QCOMPARE(model->themePreviews()[desk.packaged.id()].author, u"Author 5"_s);
        desk.run(*model, &MarluneModel::refresh);
        QCOMPARE(model->themePreviews()[bare.id()].author, u"Author 3"_s);
        QCOMPARE(server.asked.size(), 1U);
        QCOMPARE(server.asked[0].target, "/index.php?target=ipodvideo");

        const Device other = desk.makeDevice("other", true);
        desk.folder.write("other/.rockbox/themes/a.cfg", "");
        desk.folder.write("other/.rockbox/rockbox-info.txt", "Target: x y");
        model->select(other);
        QTRY_COMPARE(model->themePreviewStatus(), fetched(0));
        QCOMPARE(server.asked.back().target, "/index.php?target=x%20y");

        *desk.found = {desk.makeDevice("third", true)}; // comes in its place, unasked
        desk.folder.write("third/.rockbox/themes/a.cfg", "");
        model->volumeUnmounted(other.root);
        QTRY_COMPARE(server.asked.size(), 3U);
        QTRY_COMPARE(model->themePreviewStatus(), fetched(0));
    }

    void stayAsTheyWereWhereTheCatalogueFails()
    {
        const QByteArray good = page(1).bytes;
        const std::pair<CannedServer::Answer, bool> rows[] = {
            {{QByteArray(good).replace("200 OK", "500 Internal Server Error")}, true},
            {CannedServer::answer("200 OK", "<th>\xFF"), true},
            {{"HTTP/1.1 200 OK\r\nContent-Length: 50000000\r\n\r\n" + good, 50'000'000 - good.size()}, true},
            {{"HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + good, 0, Then::Stay}, true},
            {{good}, false}, // no site
        };
        for (const auto &[answer, isKnown] : rows) {
            const CannedServer server({answer});
            ThemedDesk desk(server);
            desk.themeSite.root = isKnown ? server.root() : QUrl();
            const auto model = desk.start();
            const QString status = model->status();
            model->select(desk.device);
            desk.waitForJobs(*model);
            const auto previews = model->themePreviews();
            QCOMPARE(previews.size(), 2);
            QTRY_COMPARE(model->themePreviewStatus(), unavailable);
            QVERIFY(model->themePreviews() == previews);
            QVERIFY(!model->alert() && !model->busy() && model->status() == status);
            QVERIFY(server.asked.empty() != isKnown && server.sent < 30'000'000);
        }
    }

    void areDroppedWithTheirDevice()
    {
        const CannedServer server({{"", 0, Then::Stay}});
        ThemedDesk desk(server);
        desk.themeSite.silence = std::chrono::minutes(1); // it is not the server's silence that ends the exchange
        const auto model = desk.start();
        model->select(desk.device);
        QTRY_COMPARE(server.connected, 1);
        QCOMPARE(model->themePreviewStatus(), u"Pobieram podglądy z Rockbox…"_s);
        model->select(desk.makeDevice("empty", false));
        QTRY_COMPARE(server.connected, 0);
        desk.waitForJobs(*model);
        QCOMPARE(model->themePreviewStatus(), QString());
    }
};

QTEST_GUILESS_MAIN(ThemePreviewsTest)
#include "ThemePreviewsTest.moc"
