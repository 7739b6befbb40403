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

/// A row of stripes, or of two halves, in the two colours.
QImage striped(QSize size, int width, QColor first, QColor second)
{
    QImage image(size, QImage::Format_RGB32);
    for (int x = 0; x < size.width(); ++x) {
        for (int y = 0; y < size.height(); ++y) {
            image.setPixelColor(x, y, x / width % 2 == 0 ? first : second);
        }
    }
    return image;
}

QByteArray halves(QSize size)
{
    return encoded(striped(size, size.width() / 2, Qt::red, Qt::blue));
}

} // namespace

TEST(CoverProvider, fillsTheSquareFromTheMiddleOfAnyShape)
{
    for (const QSize size : {QSize(60, 60), QSize(400, 400), QSize(900, 300), QSize(40, 8)}) {
        const QImage drawn = CoverProvider::draw(halves(size), 120, 0);
        ASSERT_EQ(drawn.size(), QSize(120, 120));
        for (const QPoint point : {QPoint(1, 1), QPoint(20, 118), QPoint(50, 60)}) {
            EXPECT_EQ(drawn.pixelColor(point), QColor(Qt::red)) << size.width() << " " << point.x();
        }
        EXPECT_EQ(drawn.pixelColor(118, 60), QColor(Qt::blue)) << size.width();
    }
    // No detail of a long picture is lost.
    const QImage drawn = CoverProvider::draw(encoded(striped({900, 300}, 2, Qt::black, Qt::white)), 300, 0);
    for (int x = 100; x < 120; ++x) {
        EXPECT_EQ(drawn.pixelColor(x, 150), QColor(x / 2 % 2 == 0 ? Qt::black : Qt::white)) << x;
    }
}

TEST(CoverProvider, roundsTheCornersOfAPictureAndDrawsNothingElse)
{
    const QImage drawn = CoverProvider::draw(halves({200, 200}), 100, 10);
    for (const auto &[place, alpha] : {std::pair(QPoint(0, 0), 0), std::pair(QPoint(99, 99), 0),
             std::pair(QPoint(0, 50), 255), std::pair(QPoint(11, 0), 255)}) {
        EXPECT_EQ(drawn.pixelColor(place).alpha(), alpha) << place.x();
    }
    for (const QByteArray &bytes : {QByteArray(), QByteArray("not a picture"), halves({50, 50}).left(40)}) {
        EXPECT_TRUE(CoverProvider::draw(bytes, 100, 8).isNull());
    }
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

    other.clear();
    store.prune();
    EXPECT_EQ(store.size(), 1);
    EXPECT_EQ(store.nameOf(one), name);
    EXPECT_NE(store.nameOf(QByteArray(2000, 'c')), name) << "a new buffer may lie where the one before did";
}

TEST(ShadowProvider, fadesFromTheEdgeTheSameOnAllSides)
{
    const QImage shadow = ShadowProvider::draw(8, 14);
    const int middle = shadow.width() / 2;
    EXPECT_EQ(shadow.mirrored(true, true), shadow);
    EXPECT_LE(qAlpha(shadow.pixel(middle, 0)), 8) << "the picture ends where the shadow does";
    EXPECT_NEAR(qAlpha(shadow.pixel(middle, 14)), 128, 20) << "half as dark at the edge of the shape";
    EXPECT_GE(qAlpha(shadow.pixel(middle, middle)), 245);
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
        if (entry.path().extension() == ".qml" || entry.path().filename() == "SectionListModel.cpp") {
            const QString text = QString::fromStdString(fileBytes(entry.path()));
            for (auto place = mention.globalMatch(text); place.hasNext();) {
                const QString line = place.next().captured();
                for (auto found = name.globalMatch(line); found.hasNext();) {
                    used.insert(found.next().captured(1));
                }
            }
        }
    }
    const QStringList known = Symbols::names();
    EXPECT_EQ(used, std::set<QString>(known.begin(), known.end()));
    for (const QString &symbol : used) {
        const QImage drawn = Symbols::draw(symbol, Qt::red, 32);
        ASSERT_FALSE(drawn.isNull()) << symbol;
        int inked = 0;
        for (int place = 0; place < 32 * 32; ++place) {
            const QColor colour = drawn.pixelColor(place % 32, place / 32);
            inked += colour.alpha() > 128 ? 1 : 0;
            EXPECT_TRUE(colour.alpha() < 32 || colour.green() + colour.blue() < 32) << symbol << " keeps a colour";
        }
        EXPECT_GT(inked, 40) << symbol;
    }
    EXPECT_TRUE(Symbols::draw(QStringLiteral("no.such.symbol"), Qt::red, 32).isNull());
}
