#include "artwork/Artwork.h"

#include "platform/Files.h"
#include "platform/CaselessFolder.h"
#include "platform/Images.h"
#include "platform/MarluneError.h"

#include <algorithm>
#include <array>

namespace {

constexpr int coverSide = 500; ///< pixels
constexpr int coverQuality = 90;

// In the order in which they are looked for.
constexpr std::array sidecarExtensions {".jpeg", ".jpg", ".bmp"};
constexpr std::array folderCoverNames {"cover.jpeg", "cover.jpg", "cover.bmp", "folder.jpg"};

bool anyExists(const std::vector<std::filesystem::path> &items)
{
    return std::any_of(items.begin(), items.end(), Files::exists); // a link may lead nowhere
}

} // namespace

namespace Artwork {

std::filesystem::path cacheRoot(const std::filesystem::path &supportFolder)
{
    return supportFolder / "Marlune" / "Artwork";
}

std::filesystem::path cache(const QByteArray &data, const QString &key, const std::filesystem::path &supportFolder)
{
    const std::filesystem::path root = cacheRoot(supportFolder);
    Files::makeFolders(root);
    const std::filesystem::path file = root / Files::fromText(key + QStringLiteral(".jpg")).relative_path();
    Files::writeAtomically(file, data);
    return file;
}

std::optional<QString> compatibilityIssue(const QByteArray &data)
{
    const std::optional<ImageFacts> facts = imageFacts(data);
    if (!facts) {
        return QStringLiteral("Obraz jest nieczytelny — wybierz nową okładkę.");
    }
    if (facts->type == ImageFacts::Type::Other) {
        return QStringLiteral("Obraz wymaga konwersji do JPEG obsługiwanego przez Rockbox.");
    }
    if (facts->progressive) {
        return QStringLiteral("JPEG progresywny — przygotuj zwykły JPEG dla Rockbox.");
    }
    if (facts->width > coverSide || facts->height > coverSide) {
        return QStringLiteral("Duża okładka — przygotuj wersję 500 × 500 dla iPoda.");
    }
    return std::nullopt;
}

bool externalCoverExists(const Track &track)
{
    const CaselessFolder items(track.url.parent_path());
    return folderCoverExists(items) || ownCoverExists(track, items);
}

bool ownCoverExists(const Track &track, const CaselessFolder &items)
{
    const std::filesystem::path name = track.url.filename();
    return std::any_of(sidecarExtensions.begin(), sidecarExtensions.end(), [&](const char *extension) {
        return anyExists(items.named(std::filesystem::path(name).replace_extension(extension)));
    });
}

bool folderCoverExists(const CaselessFolder &items)
{
    return std::any_of(folderCoverNames.begin(), folderCoverNames.end(),
        [&items](const char *name) { return anyExists(items.named(name)); });
}

QByteArray baselineJPEG(const QByteArray &data)
{
    if (!imageFacts(data)) {
        throw MarluneError(QStringLiteral("Nie można odczytać obrazu."));
    }
    const QImage picture = decodeImage(data, coverSide);
    if (picture.isNull()) {
        throw MarluneError(QStringLiteral("Obraz jest nieobsługiwany."));
    }
    const QImage cover = onWhiteSquare(picture, coverSide);
    if (cover.isNull()) {
        throw MarluneError(QStringLiteral("Nie udało się przygotować okładki."));
    }
    const std::optional<QByteArray> jpeg = encodeJpeg(cover, coverQuality);
    if (!jpeg) {
        throw MarluneError(QStringLiteral("Nie można zapisać JPEG."));
    }
    if (jpeg->isEmpty()) {
        throw MarluneError(QStringLiteral("Nie udało się zapisać JPEG."));
    }
    return *jpeg;
}

} // namespace Artwork
