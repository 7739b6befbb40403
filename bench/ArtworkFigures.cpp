// Covers: converting large ones, and checking many.
#include "Figures.h"

#include "artwork/Artwork.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QProcess>

#include <cmath>
#include <fstream>
#include <random>
#include <vector>

namespace {

constexpr int largeSide = 3000;
constexpr int largeQuality = 88;
constexpr int coverQuality = 85;
constexpr int manyCovers = 5000;
constexpr int differentCovers = 50;

/// Smooth values between 0 and 1 with details of all sizes from `size` pixels down, each finer one weaker.
class Clouds {
public:
    Clouds(int side, double size, unsigned seed)
        : m_side(side)
        , m_values(std::size_t(side) * std::size_t(side))
    {
        std::mt19937 random(seed);
        double weight = 0.4;
        double cell = size;
        while (cell >= 2) {
            add(cell, weight, random);
            cell /= 2;
            weight *= 0.6;
        }
    }
    [[nodiscard]] double at(int x, int y) const
    {
        return m_values[std::size_t(y) * std::size_t(m_side) + std::size_t(x)];
    }

private:
    void add(double cell, double weight, std::mt19937 &random)
    {
        const std::size_t columns = std::size_t(m_side / cell) + 2;
        std::vector<double> grid(columns * columns);
        for (double &value : grid) {
            value = double(random() & 0xFFFF) / 0xFFFF;
        }
        const auto eased = [](double part) { return part * part * (3 - 2 * part); };
        for (int y = 0; y < m_side; ++y) {
            const auto row = std::size_t(y / cell);
            const double down = eased(y / cell - double(row));
            for (int x = 0; x < m_side; ++x) {
                const auto column = std::size_t(x / cell);
                const double across = eased(x / cell - double(column));
                const double *corner = &grid[row * columns + column];
                m_values[std::size_t(y) * std::size_t(m_side) + std::size_t(x)] += weight
                    * std::lerp(std::lerp(corner[0], corner[1], across),
                        std::lerp(corner[columns], corner[columns + 1], across), down);
            }
        }
    }

    int m_side;
    std::vector<double> m_values;
};

/// Something like a photograph: forms of all sizes, slow changes of colour, and the grain of a sensor.
QImage photograph(int side, double grain, unsigned seed)
{
    const Clouds light(side, side / 6.0, seed);
    const Clouds warmth(side, side / 3.0, seed + 1);
    std::mt19937 random(seed);
    const auto level = [&](double value) {
        const double noise = grain * (double(random() & 0xFF) / 0xFF - 0.5);
        return std::clamp(int(255 * value + noise), 0, 255);
    };
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const double tint = 0.2 * (warmth.at(x, y) - 0.5);
            const double value = light.at(x, y);
            row[x] = qRgb(level(value + tint), level(value), level(value - tint));
        }
    }
    return image;
}

QByteArray encoded(const QImage &image, int quality, bool isProgressive)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(isProgressive);
    Bench::require(writer.write(image), "cannot make the picture to measure on");
    return bytes;
}

void convert(const char *name, bool isProgressive)
{
    const Bench::WorkFolder folder;
    const QByteArray picture = encoded(photograph(largeSide, 40, 1), largeQuality, isProgressive);
    const std::filesystem::path file = folder.path() / "large.jpg";
    std::ofstream stream(file, std::ios::binary);
    stream.write(picture.constData(), picture.size());
    stream.close();
    Bench::require(bool(stream), "cannot write the picture to measure on");
    const auto ours = [&] { return Bench::seconds([&] { (void)Artwork::baselineJPEG(picture); }); };
    const auto peer = [&] {
        return Bench::seconds([&] {
            const QString program = QStringLiteral("vipsthumbnail");
            const QString path = QString::fromStdString(file.string());
            Bench::require(QProcess::execute(program, {QStringLiteral("--size"), QStringLiteral("500x500"), path}) == 0,
                "the peer failed");
        });
    };
    (void)ours();
    (void)peer();
    Bench::print(name, Bench::inTurn(ours, peer, 3 * Bench::rounds));
}

} // namespace

namespace Bench {

void jpeg(const std::filesystem::path &)
{
    convert("jpeg", false);
}

void jpegProgressive(const std::filesystem::path &)
{
    convert("jpeg-progressive", true);
}

void check(const std::filesystem::path &)
{
    std::vector<QByteArray> different;
    different.reserve(differentCovers);
    for (unsigned i = 0; i < differentCovers; ++i) {
        different.push_back(encoded(photograph(500 + int(i) * 20, 20, i), coverQuality, i % 5 == 0));
    }
    std::vector<QByteArray> covers;
    covers.reserve(manyCovers);
    for (int i = 0; i < manyCovers; ++i) {
        const QByteArray &cover = different[std::size_t(i % differentCovers)];
        covers.emplace_back(cover.constData(), cover.size()); // each in memory of its own
    }
    print("check",
        inTurn(
            [&] {
                return seconds([&] {
                    for (const QByteArray &cover : covers) {
                        (void)Artwork::compatibilityIssue(cover);
                    }
                });
            },
            [&] {
                return seconds([&] {
                    for (const QByteArray &cover : covers) {
                        require(!QImage::fromData(cover).isNull(), "the peer failed");
                    }
                });
            }));
}

} // namespace Bench
