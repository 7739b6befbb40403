#include "artwork/Artwork.h"

#include "media/pictures/Images.h"
#include "platform/MarluneError.h"
#include "platform/files/CaselessFolder.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <array>

namespace {

constexpr int coverSide = 500; ///< pixels
constexpr int coverQuality = 90;

// In the order in which they are looked for.
constexpr std::array sidecarExtensions {".jpeg", ".jpg", ".bmp"};
constexpr std::array folderCoverNames {"cover.jpeg", "cover.jpg", "cover.bmp", "folder.jpg"};

/// Links are followed. The usual spelling is asked for first: to list the folder takes longer.
template <typename Names> bool anyExists(const CaselessFolder &items, const Names &names)
{
    const auto isThere = [](const std::filesystem::path &file) { return Files::exists(file); };
    return std::any_of(names.begin(), names.end(), [&](const auto &name) { return isThere(items.folder() / name); })
        || std::any_of(names.begin(), names.end(), [&](const auto &name) {
               const auto spellings = items.named(name);
               return std::any_of(spellings.begin(), spellings.end(), isThere);
           });
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
    std::array<std::filesystem::path, sidecarExtensions.size()> names;
    std::transform(sidecarExtensions.begin(), sidecarExtensions.end(), names.begin(),
        [&track](const char *extension) { return track.url.filename().replace_extension(extension); });
    return anyExists(items, names);
}

bool folderCoverExists(const CaselessFolder &items)
{
    return anyExists(items, folderCoverNames);
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
