#include "ui/flow/StageProvider.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr qsizetype keptBytes = 4'000'000;

/// Rounds so that neighbours of the same value come out differently.
class Grain {
public:
    int round(double value) { return std::clamp(int(value + double(m_random()) / std::minstd_rand::max()), 0, 255); }

private:
    std::minstd_rand m_random;
};

/// How much of a Gauss curve's area each of the pixels around its middle has.
std::vector<double> gaussCurve(double deviation)
{
    const int reach = int(3 * deviation);
    std::vector<double> curve;
    double sum = 0;
    for (int x = -reach; x <= reach; ++x) {
        curve.push_back(std::exp(-x * x / (2 * deviation * deviation)));
        sum += curve.back();
    }
    for (double &part : curve) {
        part /= sum;
    }
    return curve;
}

/// Values of pixels, row by row, blurred along one direction: `step` leads to the next pixel there.
std::vector<double> blurred(const std::vector<double> &pixels, const std::vector<double> &curve, int length, int step)
{
    std::vector<double> result(pixels.size());
    const int reach = int(curve.size()) / 2;
    for (int pixel = 0; pixel < int(pixels.size()); ++pixel) {
        const int place = pixel / step % length;
        for (int away = std::max(-reach, -place); away <= std::min(reach, length - 1 - place); ++away) {
            result[std::size_t(pixel)] += pixels[std::size_t(pixel + away * step)] * curve[std::size_t(away + reach)];
        }
    }
    return result;
}

} // namespace

StageProvider::StageProvider()
    : DrawingProvider(
          [](const QString &id, const QSize &) { return id == QStringLiteral("light") ? light() : ground(); },
          keptBytes)
{
}

QImage StageProvider::ground()
{
    constexpr int width = 256;
    constexpr int height = 740;
    constexpr double brightest = 0.12 * 255;
    QImage image(width, height, QImage::Format_RGB32);
    Grain grain;
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int grey = grain.round(brightest * (1 - (y + 0.5) / height));
            line[x] = qRgb(grey, grey, grey);
        }
    }
    return image;
}

QImage StageProvider::light()
{
    constexpr QRgb blue = 0xFF0A84FF;
    constexpr double strongest = 0.12 * 255;
    constexpr double blur = 45 * lightScale;
    constexpr double across = 400 * lightScale; // half of the ellipse's axes
    constexpr double along = 45 * lightScale;
    constexpr int width = int(2 * (across + lightMargin * lightScale));
    constexpr int height = int(2 * (along + lightMargin * lightScale));
    std::vector<double> pixels(std::size_t(width) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double right = (x + 0.5 - width / 2.0) / across;
            const double down = (y + 0.5 - height / 2.0) / along;
            pixels[std::size_t(y) * width + std::size_t(x)] = right * right + down * down <= 1 ? 1 : 0;
        }
    }
    const std::vector<double> curve = gaussCurve(blur);
    pixels = blurred(blurred(pixels, curve, width, 1), curve, height, width);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    Grain grain;
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int alpha = grain.round(strongest * pixels[std::size_t(y) * width + std::size_t(x)]);
            line[x] = qPremultiply(qRgba(qRed(blue), qGreen(blue), qBlue(blue), alpha));
        }
    }
    return image;
}
