// The drawn iPods, by their pixels, and the pictures of themes that lie on their screens.
#include "support/CannedServer.h"
#include "support/ModelDesk.h"
#include "ui/LocalPath.h"
#include "ui/device/IPodPainter.h"
#include "ui/themes/ThemePicture.h"

#include <QImage>
#include <QPainter>

namespace {

const IPodProfile &profileOf(const char *id)
{
    const IPodProfile *known = IPodProfile::withId(QString::fromLatin1(id));
    return known ? *known : IPodProfile::fallback();
}

bool isNear(const QColor &colour, const QColor &wanted, int tolerance)
{
    return std::abs(colour.red() - wanted.red()) <= tolerance && std::abs(colour.green() - wanted.green()) <= tolerance
        && std::abs(colour.blue() - wanted.blue()) <= tolerance && colour.alpha() == 255;
}

QColor grey(int level)
{
    return {level, level, level};
}

} // namespace

class IPodTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachDrawingFillsItsFrameAndStaysInIt()
    {
        std::vector<IPodProfile> profiles = IPodProfile::all();
        QCOMPARE(profiles.size(), 32U);
        profiles.push_back(IPodProfile::fallback());
        for (const IPodProfile &profile : profiles) {
            for (const double ratio : {1.0, 1.5, 2.0}) {
                const IPodLayout layout = IPodLayout::of(profile, 200, 300, ratio);
                const QSizeF body = layout.body;
                QVERIFY(std::abs(body.height() / body.width() - profile.ratio) < 0.02);
                QVERIFY(body.width() <= 200 && body.height() <= 300 && (body.width() > 199 || body.height() > 299));
                const QRectF whole(QPointF(), body);
                QVERIFY(whole.contains(layout.screen.value_or(whole)) && whole.contains(layout.wheel.value_or(whole)));

                const QImage drawn
                    = IPodPainter::draw(profile, profile.finish, layout, IPodPainter::Screen::Lit, ratio);
                const double margin = IPodPainter::margin;
                QCOMPARE(drawn.size(), ((body + QSizeF(2 * margin, 2 * margin)) * ratio).toSize());
                for (int x = 0; x < drawn.width(); ++x) {
                    QCOMPARE(drawn.pixelColor(x, 0).alpha() + drawn.pixelColor(x, drawn.height() - 1).alpha(), 0);
                }
                const QRectF sides(QPointF(margin, margin) * ratio, body * ratio);
                const int middle = int(sides.center().y());
                QCOMPARE(drawn.pixelColor(int(sides.left()), middle).alpha(), 255);
                QCOMPARE(drawn.pixelColor(int(sides.right()) - 1, middle).alpha(), 255);
                QVERIFY(drawn.pixelColor(int(sides.left()) - 2, middle).alpha() < 128);
            }
        }
        // A screen that would be too high keeps its width.
        const IPodLayout nano = IPodLayout::of(profileOf("nano7"), 400, 4000, 100);
        QCOMPARE(std::lround(nano.screen->width()), std::lround(0.86 * 400));
        QCOMPARE(std::lround(nano.screen->height()), std::lround(0.73 * 1.93 * 400));
    }

    void screensAndWheelsHaveTheirColours()
    {
        struct Row {
            const char *id;
            const char *finish;
            QColor screen;
            QColor ring;
            QColor button;
        };
        const QColor lightRing = grey(196);
        const Row rows[] = {{"ipod4", "white", grey(186), lightRing, grey(251)},
            {"u24", "u2", grey(186), QColor(255, 59, 48), grey(46)}, {"nano1", "black", grey(15), grey(56), grey(46)},
            {"video", "silver", grey(15), lightRing, grey(251)}, {"none", "plaid", grey(15), lightRing, grey(251)}};
        for (const Row &row : rows) {
            const IPodLayout layout = IPodLayout::of(profileOf(row.id), 200, 500, 2);
            const QImage drawn = IPodPainter::draw(
                profileOf(row.id), QString::fromLatin1(row.finish), layout, IPodPainter::Screen::Lit, 2);
            const auto at = [&](QPointF point) {
                return drawn.pixelColor(((point + QPointF(IPodPainter::margin, IPodPainter::margin)) * 2).toPoint());
            };
            QVERIFY2(isNear(at(layout.screen->bottomRight() - QPointF(6, 6)), row.screen, 3), row.id);
            const QPointF hub = layout.wheel->center();
            QVERIFY2(isNear(at(hub + QPointF(0.24, 0.02) * layout.wheel->width()), row.ring, 14), row.id);
            QVERIFY2(isNear(at(hub), row.button, 14), row.id);
        }
    }

    void aPictureIsShownInHardPixelsOrSaidToBeUnavailable()
    {
        ModelDesk desk;
        const auto model = desk.start();
        QImage two(2, 1, QImage::Format_RGB32);
        two.setPixelColor(0, 0, Qt::red);
        two.setPixelColor(1, 0, Qt::blue);
        const fs::path good = desk.folder / "\xFFna\xC5\xBC #1.bmp";
        const fs::path exported = desk.folder / "two.bmp";
        QVERIFY(two.save(QString::fromStdString(exported.string())));
        fs::copy_file(exported, good);
        const std::string bytes = fileBytes(exported);
        const auto padded = [&](const char *name, std::size_t size) { // what follows a picture is not looked at
            return desk.folder.write(name, bytes + std::string(size - bytes.size(), '\0'));
        };
        const std::pair<QUrl, ThemePicture::State> rows[]
            = {{fileUrl(good), ThemePicture::Ready}, {fileUrl(padded("limit.bmp", 9'999'999)), ThemePicture::Ready},
                {fileUrl(padded("large.bmp", 10'000'000)), ThemePicture::Unavailable},
                {fileUrl(desk.folder.write("broken.png", "\x89PNG")), ThemePicture::Unavailable},
                {fileUrl(desk.folder / "missing.png"), ThemePicture::Unavailable},
                {fileUrl(desk.folder.path()), ThemePicture::Unavailable}, {QUrl(), ThemePicture::Absent},
                {QUrl(u"file://else/a.png"_s), ThemePicture::Unavailable},
                {QUrl(u"gopher://a/b.png"_s), ThemePicture::Unavailable}};
        for (const auto &[url, state] : rows) {
            ThemePicture picture;
            picture.setUrl(url);
            QTRY_COMPARE(picture.state(), state);
        }

        CannedServer server(
            {CannedServer::answer("200 OK", QByteArray::fromStdString(bytes)), CannedServer::answer("404 Not Found")});
        for (const auto &[name, state] : {std::pair("a", ThemePicture::Ready), {"b", ThemePicture::Unavailable},
                 {"a", ThemePicture::Ready}}) { // what was brought once is not asked for again
            ThemePicture picture;
            picture.setUrl(server.root().resolved(QUrl(QString::fromLatin1(name))));
            QTRY_COMPARE(picture.state(), state);
        }

        // The address changes while a slow disk reads, and once more: only the last one lands.
        ThemePicture picture;
        picture.setSize({80, 60});
        ModelDesk::hold(*model, [&] {
            picture.setUrl(fileUrl(desk.folder / "missing.png"));
            auto gone = std::make_unique<ThemePicture>();
            gone->setUrl(fileUrl(good));
            gone.reset();
            picture.setUrl(fileUrl(good));
            QCOMPARE(picture.state(), ThemePicture::Reading);
        });
        QTRY_COMPARE(picture.state(), ThemePicture::Ready);
        QImage shown(80, 60, QImage::Format_ARGB32_Premultiplied);
        shown.fill(Qt::transparent);
        QPainter painter(&shown);
        picture.paint(&painter);
        painter.end();
        QCOMPARE(shown.pixelColor(39, 30), QColor(Qt::red));
        QCOMPARE(shown.pixelColor(40, 30), QColor(Qt::blue));
        QCOMPARE(shown.pixelColor(40, 5).alpha(), 0); // twice as wide as high: room above
        fs::remove(good); // replaced under its name, by nothing
        QUrl again = picture.url();
        again.setFragment(u"1"_s);
        picture.setUrl(again);
        QCOMPARE(picture.state(), ThemePicture::Ready);
        QTRY_COMPARE(picture.state(), ThemePicture::Unavailable);
    }
};

QTEST_MAIN(IPodTest)
#include "IPodTest.moc"
