// The store of covers, the checks of what Rockbox can show, and the conversion into what it can.
#include "artwork/Artwork.h"
#include "media/pictures/Images.h"

#include "support/Testing.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageWriter>
#include <QLoggingCategory>
#include <QtEndian>

#include <malloc.h>

#include <ctime>

namespace {

const fs::path images = dataFile("images");

/// Red, green, blue and black, from the left to the right and downwards.
QImage quarters(int width, int height)
{
    return QImage::fromData(QByteArray::fromStdString(fileBytes(images / "plain.png"))).scaled(width, height);
}

QByteArray encoded(const QImage &image, const char *format = "jpeg", bool isProgressive = false, int quality = 75)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(isProgressive);
    writer.setQuality(quality);
    EXPECT_TRUE(writer.write(image)) << format;
    return bytes;
}

QByteArray declaring(QByteArray jpeg, quint16 side)
{
    const qsizetype frame = std::max(jpeg.indexOf("\xFF\xC0"), jpeg.indexOf("\xFF\xC2"));
    EXPECT_GT(frame, 0);
    qToBigEndian(side, jpeg.data() + frame + 5);
    qToBigEndian(side, jpeg.data() + frame + 7);
    return jpeg;
}

std::string issue(const QByteArray &bytes)
{
    return Artwork::compatibilityIssue(bytes).value_or(QString()).toStdString();
}

QImage converted(const QByteArray &bytes)
{
    const QByteArray jpeg = Artwork::baselineJPEG(bytes);
    EXPECT_EQ(issue(jpeg), "");
    const QImage image = QImage::fromData(jpeg);
    EXPECT_EQ(image.size(), QSize(500, 500));
    return image;
}

void expectColour(const QImage &image, QPoint point, QColor colour)
{
    const QColor found = image.pixelColor(point);
    const int apart = std::max({std::abs(found.red() - colour.red()), std::abs(found.green() - colour.green()),
        std::abs(found.blue() - colour.blue())});
    EXPECT_LT(apart, 8) << point.x() << "," << point.y() << " " << found.name() << " for " << colour.name();
}

/// quarters() of these proportions in the middle of a white square.
void expectQuarters(const QImage &image, QSize size)
{
    size.scale(500, 500, Qt::KeepAspectRatio);
    const QRect place(QPoint((500 - size.width()) / 2, (500 - size.height()) / 2), size);
    expectColour(image, place.topLeft() + QPoint(12, 12), Qt::red);
    expectColour(image, place.topRight() + QPoint(-12, 12), Qt::green);
    expectColour(image, place.bottomLeft() + QPoint(12, -12), Qt::blue);
    expectColour(image, place.bottomRight() + QPoint(-12, -12), Qt::black);
    if (const QPoint outwards(place.x() > 0 ? 16 : 0, place.y() > 0 ? 16 : 0); !outwards.isNull()) {
        expectColour(image, place.topLeft() - outwards, Qt::white);
        expectColour(image, place.bottomRight() + outwards, Qt::white);
    }
}

const auto *const foreign = "Obraz wymaga konwersji do JPEG obsługiwanego przez Rockbox.";
const auto *const unsupported = "Obraz jest nieobsługiwany.";
const auto *const scanned = "JPEG progresywny — przygotuj zwykły JPEG dla Rockbox.";

} // namespace

TEST(Artwork, saysWhyAnImageWillNotDo)
{
    const auto *const unreadable = "Obraz jest nieczytelny — wybierz nową okładkę.";
    const auto *const large = "Duża okładka — przygotuj wersję 500 × 500 dla iPoda.";
    const QImage small = quarters(100, 100);
    const QByteArray both = encoded(quarters(600, 600), "jpeg", true); // with a JFIF marker of 18 bytes in front
    const std::vector<std::pair<QByteArray, const char *>> cases {{{}, unreadable}, {"no picture", unreadable},
        {encoded(small).left(100), unreadable}, {encoded(small, "png").left(20), unreadable}, {"BM", unreadable},
        {declaring(encoded(small), 0), unreadable}, {both, scanned}, {QByteArray(both).remove(2, 18), large},
        {encoded(quarters(500, 500)), ""}, {encoded(quarters(500, 501)), large}, {encoded(quarters(501, 500)), large},
        {encoded(quarters(600, 100), "bmp"), large}};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(issue(cases[i].first), cases[i].second) << i;
    }
}

TEST(Artwork, takesEveryFormatAndOrientation)
{
    const auto files = filesBelow(images);
    EXPECT_GE(files.size(), 42U);
    for (const auto &[name, bytes] : files) {
        SCOPED_TRACE(name);
        const bool isShown = name.ends_with(".jpg") || name.ends_with(".bmp");
        const QByteArray picture = QByteArray::fromStdString(bytes);
        EXPECT_EQ(issue(picture), name == "progressive.jpg" ? scanned : isShown ? "" : foreign);
        if (name == "planar16.tiff") { // Qt misreads it
            EXPECT_EQ(messageOf([&] { (void)converted(picture); }), unsupported);
            continue;
        }
        const QImage cover = converted(picture);
        expectQuarters(cover, {64, 48});
        if (name == "transparent16.png") {
            expectColour(cover, {250, 250}, Qt::white);
            const QByteArray mark = picture.mid(picture.indexOf("tRNS") - 4, 18);
            const QByteArray empty("\0\0\0\0noNe\xEA\x14\x24\x6D", 12);
            QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio=false")); // one for each mark
            const std::clock_t start = std::clock();
            const QByteArray many = empty.repeated(16'000) + mark.repeated(16'000);
            EXPECT_EQ(converted(QByteArray(picture).insert(picture.indexOf(mark), many)), cover);
            EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
        }
    }
}

TEST(Artwork, putsTheWholePictureOnWhite)
{
    for (const QSize size : {QSize(100, 100), QSize(1000, 500), QSize(600, 2100), QSize(3000, 2999)}) {
        for (const char *format : {"jpeg", "png"}) {
            expectQuarters(converted(encoded(quarters(size.width(), size.height()), format)), size);
        }
    }
    QImage picture(700, 1, QImage::Format_ARGB32);
    picture.fill(QColor(0, 0, 255, 128));
    expectColour(converted(encoded(picture, "png")), {250, 240}, Qt::white);
    expectColour(converted(encoded(picture.scaled(50, 50), "png")), {250, 250}, QColor(127, 127, 255));
    picture.fill(QColor(200, 100, 100));
    picture.setColorSpace(QColorSpace::DisplayP3);
    expectColour(converted(encoded(picture.scaled(700, 700))), {250, 250}, QColor(214, 95, 96));
}

TEST(Artwork, showsAProgressivePictureLikeAnOrdinaryOne)
{
    QImage grain = quarters(3200, 3200);
    for (unsigned i = 0, place = 1; i < 3'000'000; ++i, place = place * 1664525U + 1013904223U) {
        grain.setPixel(int(place >> 8 & 2047), int(place >> 20 & 2047), qRgb(i & 255, i >> 8 & 255, i >> 3 & 255));
    }
    for (const auto &[side, quality] : {std::pair(800, 75), {1600, 20}, {1600, 75}, {3200, 20}}) {
        const QImage picture = grain.scaled(side, side);
        const QImage ordinary = decodeImage(encoded(picture, "jpeg", false, quality), 400);
        const QImage progressive = decodeImage(encoded(picture, "jpeg", true, quality), 400);
        for (int i = 0; i < 400 * 400; ++i) {
            expectColour(progressive, {i % 400, i / 400}, ordinary.pixelColor(i % 400, i / 400));
        }
    }
}

TEST(Artwork, refusesPicturesThatSayTheyAreHuge)
{
    const QImage picture = quarters(900, 900);
    QByteArray bitmap = encoded(picture, "bmp");
    qToLittleEndian(qint32(9'000), bitmap.data() + 18);
    qToLittleEndian(qint32(9'000), bitmap.data() + 22);
    for (const QByteArray &lying :
        {declaring(encoded(picture), 65'000), bitmap, declaring(encoded(picture, "jpeg", true), 12'000)}) {
        EXPECT_EQ(messageOf([&] { (void)Artwork::baselineJPEG(lying); }), unsupported);
    }
}

// Other pictures, and whatever else the program has in memory, would come out in the cover.
TEST(Artwork, takesNothingFromMemoryThatThePictureDoesNotFill)
{
    const auto onMemoryOf = [](int filling, const auto &work) {
        ::mallopt(M_PERTURB, 0xFF ^ filling);
        const auto result = work();
        ::mallopt(M_PERTURB, 0);
        return result;
    };
    const auto firstOfMemory = [] {
        const QImage image(64, 48, QImage::Format_RGB32);
        return image.pixel(0, 0);
    };
    const bool isFilled = onMemoryOf(1, firstOfMemory) != onMemoryOf(2, firstOfMemory);
    const QImage picture = quarters(64, 48);
    const QByteArray coloured = encoded(picture, "bmp");
    const QByteArray indexed = encoded(picture.convertToFormat(QImage::Format_Indexed8), "bmp");
    QByteArray runs = indexed;
    runs.replace(30, 1, "\2"); // coded by runs: four pixels of each of two rows, and the end
    runs.replace(runs[10] + (runs[11] << 8), 10, QByteArray("\4\1\0\0\4\1\0\1\0\1", 10));
    std::vector<QByteArray> pictures {runs};
    for (const QByteArray &whole : {coloured, indexed}) {
        for (const qsizetype part : {1, 2, 9}) {
            pictures.push_back(whole.first(whole.size() - whole.size() * part / 10));
        }
    }
    for (const char *name : {"transparent16.png", "planar16.tiff", "animated.gif", "progressive.jpg", "lossy.webp"}) {
        const QByteArray whole = QByteArray::fromStdString(fileBytes(images / name));
        pictures.insert(pictures.end(), {whole, whole.first(whole.size() * 2 / 3)});
    }
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const auto decode = [&] { return decodeImage(pictures[i], 500); };
        EXPECT_EQ(onMemoryOf(1, decode), onMemoryOf(2, decode)) << i;
    }
    EXPECT_FALSE(decodeImage(runs, 500).isNull());
    if (!isFilled) {
        GTEST_SKIP() << "the allocator in use does not fill memory when asked to: the comparison proves nothing";
    }
}
