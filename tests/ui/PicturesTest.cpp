// Covers and symbols: what is drawn, and for how long covers are held.
#include "support/Testing.h"
#include "ui/pictures/CoverProvider.h"
#include "ui/pictures/Symbols.h"

#include <QBuffer>
#include <QRegularExpression>

#include <set>

namespace {

/// A picture in stripes of two colours.
QByteArray striped(QSize size, int width, QColor first, QColor second)
{
    QImage image(size, QImage::Format_RGB32);
    for (int place = 0; place < size.width() * size.height(); ++place) {
        const int x = place % size.width();
        image.setPixelColor(x, place / size.width(), x / width % 2 == 0 ? first : second);
    }
    QBuffer png;
    EXPECT_TRUE(png.open(QIODevice::WriteOnly) && image.save(&png, "PNG"));
    return png.data();
}

QByteArray halves(QSize size)
{
    return striped(size, size.width() / 2, Qt::red, Qt::blue);
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
    const QImage drawn = CoverProvider::draw(striped({900, 300}, 2, Qt::black, Qt::white), 300, 0);
    for (int x = 100; x < 120; ++x) {
        EXPECT_EQ(drawn.pixelColor(x, 150), QColor(x / 2 % 2 == 0 ? Qt::black : Qt::white)) << x;
    }
}

TEST(CoverProvider, drawsNothingForWhatIsNoPicture)
{
    EXPECT_EQ(CoverProvider::draw(halves({200, 200}), 100, 10).pixelColor(0, 0).alpha(), 0) << "a corner is rounded";
    for (const QByteArray &bytes : {QByteArray(), QByteArray("not a picture"), halves({50, 50}).left(40)}) {
        EXPECT_TRUE(CoverProvider::draw(bytes, 100, 8).isNull());
        EXPECT_TRUE(CoverProvider::wash(bytes, {100, 100}, 0.5, 4).isNull());
    }
}

TEST(CoverProvider, washesWithTheCoversColoursOnly)
{
    for (const double lightness : {0.13, 0.9}) {
        const QImage wash = CoverProvider::wash(halves({300, 200}), {120, 96}, lightness, 10);
        const QColor left = wash.pixelColor(15, 15);
        const QColor right = wash.pixelColor(85, 15);
        EXPECT_GT(left.red(), left.blue() + 10);
        EXPECT_GT(right.blue(), right.red() + 10);
        EXPECT_NEAR(left.lightnessF(), lightness, 0.03);
        EXPECT_LE(wash.pixelColor(119, 15).alpha() + wash.pixelColor(15, 95).alpha(), 2) << "no edge is seen";
        EXPECT_EQ(wash.pixelColor(0, 0).alpha(), 0) << "the corner is the sheet's";
    }
}

TEST(CoverStore, namesABufferOnceAndForgetsItWithItsLastHolder)
{
    CoverStore store;
    const QByteArray one(2000, 'a');
    QByteArray other(2000, 'b');
    const QString name = store.nameOf(one);
    EXPECT_EQ(store.nameOf(QByteArray(one)), name); // shares its bytes
    EXPECT_NE(store.nameOf(other), name);
    EXPECT_EQ(store.find(name), std::optional(one));
    other.clear();
    store.prune();
    EXPECT_EQ(store.size(), 1);
    EXPECT_EQ(store.nameOf(one), name);
    const QByteArray third(2000, 'c'); // may lie where the other did
    EXPECT_EQ(store.find(store.nameOf(third)), std::optional(third));
}

TEST(Symbols, everyNameInUseHasADrawing)
{
    // Names are in QML as `symbol: … "name" …`, in the sections' table, and where iPods are drawn.
    const QRegularExpression mention(
        uR"re(symbol\w*:[^\n]*(?:\n\s+[:"][^\n]*)*|case Section::\w+:\s+return QStringLiteral\("[a-z.]+"\)|drawSymbol\([^;]*;)re"_s);
    const QRegularExpression name(uR"re("([a-z0-9.]+)")re"_s);
    std::set<QString> used;
    const fs::path sources = fs::path(MARLUNE_SOURCE_DIR) / "src/ui";
    for (const auto &entry : fs::recursive_directory_iterator(sources)) {
        if (entry.path().extension() == ".qml" || entry.path().filename() == "SectionListModel.cpp"
            || entry.path().filename() == "IPodParts.cpp") {
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
    EXPECT_TRUE(Symbols::draw(u"no.such.symbol"_s, Qt::red, 32).isNull());
}
