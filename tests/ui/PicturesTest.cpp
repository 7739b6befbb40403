// Covers, shadows and symbols: what is drawn, and for how long covers are held.
#include "support/Messages.h"
#include "support/TemporaryFolder.h"
#include "ui/CoverProvider.h"
#include "ui/ShadowProvider.h"
#include "ui/Symbols.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QRegularExpression>

#include <set>

namespace {

QByteArray encoded(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "PNG"));
    return bytes;
}

/// Left half red, right half blue.
QImage halves(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) {
            image.setPixelColor(x, y, x < width / 2 ? Qt::red : Qt::blue);
        }
    }
    return image;
}

} // namespace

TEST(CoverProvider, fillsTheSquareFromTheMiddleOfAnyShape)
{
    for (const QSize size : {QSize(60, 60), QSize(400, 400), QSize(900, 300), QSize(40, 8)}) {
        const QImage drawn = CoverProvider::draw(encoded(halves(size.width(), size.height())), 120, 0);
        ASSERT_EQ(drawn.size(), QSize(120, 120));
        for (const QPoint point : {QPoint(1, 1), QPoint(20, 118), QPoint(50, 60)}) {
            EXPECT_EQ(drawn.pixelColor(point), QColor(Qt::red)) << size.width() << " " << point.x();
        }
        EXPECT_EQ(drawn.pixelColor(118, 60), QColor(Qt::blue)) << size.width();
    }
}

TEST(CoverProvider, losesNoDetailOfALongPicture)
{
    QImage stripes(900, 300, QImage::Format_RGB32);
    for (int x = 0; x < stripes.width(); ++x) {
        for (int y = 0; y < stripes.height(); ++y) {
            stripes.setPixelColor(x, y, x / 2 % 2 == 0 ? Qt::black : Qt::white);
        }
    }
    const QImage drawn = CoverProvider::draw(encoded(stripes), 300, 0);
    for (int x = 100; x < 120; ++x) {
        EXPECT_EQ(drawn.pixelColor(x, 150), QColor(x / 2 % 2 == 0 ? Qt::black : Qt::white)) << x;
    }
}

TEST(CoverProvider, roundsTheCornersAndNothingElse)
{
    const QImage drawn = CoverProvider::draw(encoded(halves(200, 200)), 100, 10);
    EXPECT_EQ(drawn.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(drawn.pixelColor(99, 99).alpha(), 0);
    EXPECT_EQ(drawn.pixelColor(0, 50).alpha(), 255);
    EXPECT_EQ(drawn.pixelColor(11, 0).alpha(), 255);
}

TEST(CoverProvider, drawsNothingForWhatIsNoPicture)
{
    EXPECT_TRUE(CoverProvider::draw({}, 100, 8).isNull());
    EXPECT_TRUE(CoverProvider::draw("not a picture", 100, 8).isNull());
    EXPECT_TRUE(CoverProvider::draw(encoded(halves(50, 50)).left(40), 100, 8).isNull());
}

TEST(CoverStore, namesABufferOnceAndForgetsItWithItsLastHolder)
{
    CoverStore store;
    QByteArray one(2000, 'a');
    const QByteArray sharedWithOne = one;
    QByteArray other(2000, 'b');
    const QString name = store.nameOf(one);
    EXPECT_EQ(store.nameOf(sharedWithOne), name);
    EXPECT_NE(store.nameOf(other), name);
    EXPECT_EQ(store.find(name), std::optional(one));
    EXPECT_EQ(store.find(QStringLiteral("77")), std::nullopt);

    other.clear();
    store.prune();
    EXPECT_EQ(store.size(), 1);
    EXPECT_EQ(store.nameOf(one), name);
    EXPECT_NE(store.nameOf(QByteArray(2000, 'c')), name) << "a new buffer may lie where the one before did";
}

TEST(ShadowProvider, fadesFromTheEdgeTheSameOnAllSides)
{
    const QImage shadow = ShadowProvider::draw(8, 14);
    ASSERT_EQ(shadow.width(), shadow.height());
    EXPECT_EQ(shadow.mirrored(true, true), shadow);
    const int middle = shadow.width() / 2;
    EXPECT_LE(qAlpha(shadow.pixel(middle, 0)), 8) << "the picture ends where the shadow does";
    EXPECT_NEAR(qAlpha(shadow.pixel(middle, 14)), 128, 20) << "half as dark at the edge of the shape";
    EXPECT_GE(qAlpha(shadow.pixel(middle, middle)), 245);
    EXPECT_LT(qAlpha(shadow.pixel(14, 14)), qAlpha(shadow.pixel(middle, 14))) << "rounder at the corner";
}

TEST(Symbols, everyNameInUseHasADrawing)
{
    // Names stand in QML as `symbol: … "name" …` and in the sections' table.
    const QRegularExpression mention(
        QStringLiteral(R"re(symbol\w*:[^\n]*|case Section::\w+:\s+return QStringLiteral\("[a-z.]+"\))re"));
    const QRegularExpression name(QStringLiteral(R"re("([a-z0-9.]+)")re"));
    std::set<QString> used;
    const std::filesystem::path sources = std::filesystem::path(MARLUNE_SOURCE_DIR) / "src/ui";
    for (const auto &entry : std::filesystem::recursive_directory_iterator(sources)) {
        if (entry.path().extension() != ".qml" && entry.path().filename() != "SectionListModel.cpp") {
            continue;
        }
        const QString text = QString::fromStdString(fileBytes(entry.path()));
        for (auto place = mention.globalMatch(text); place.hasNext();) {
            const QString line = place.next().captured();
            for (auto found = name.globalMatch(line); found.hasNext();) {
                used.insert(found.next().captured(1));
            }
        }
    }
    EXPECT_GE(used.size(), 15U);
    for (const QString &symbol : used) {
        const QImage drawn = Symbols::draw(symbol, Qt::red, 32);
        ASSERT_FALSE(drawn.isNull()) << symbol;
        int inked = 0;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                const QColor colour = drawn.pixelColor(x, y);
                inked += colour.alpha() > 128 ? 1 : 0;
                EXPECT_TRUE(colour.alpha() < 32 || colour.green() + colour.blue() < 32) << symbol << " keeps a colour";
            }
        }
        EXPECT_GT(inked, 40) << symbol;
    }
    for (const QString &known : Symbols::names()) {
        EXPECT_TRUE(used.contains(known)) << "unused: " << known;
    }
    EXPECT_TRUE(Symbols::draw(QStringLiteral("no.such.symbol"), Qt::red, 32).isNull());
}
