#include "quality/CollectionQuality.h"

#include "artwork/Artwork.h"
#include "library/AlbumGrouping.h"

#include "platform/Files.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// Artwork::compatibilityIssue(), asked once for each buffer. The buffers must outlive it.
class ImageChecks {
public:
    [[nodiscard]] const std::optional<QString> &issue(const QByteArray &image)
    {
        const auto key = std::pair(image.constData(), image.size());
        auto known = m_issues.find(key);
        if (known == m_issues.end()) {
            known = m_issues.insert(key, Artwork::compatibilityIssue(image));
        }
        return *known;
    }

private:
    QHash<std::pair<const char *, qsizetype>, std::optional<QString>> m_issues;
};

/// Whether Artwork::externalCoverExists() holds for all tracks; a folder is asked once for those of it that follow each
/// other.
bool allHaveExternalCovers(const std::vector<Track> &tracks)
{
    std::filesystem::path folder;
    bool folderHasCover = false;
    return std::all_of(tracks.begin(), tracks.end(), [&](const Track &track) {
        if (std::filesystem::path parent = track.url.parent_path(); parent != folder) {
            folder = std::move(parent);
            folderHasCover = Artwork::folderCoverExists(folder);
        }
        return folderHasCover || Artwork::externalCoverExists(track);
    });
}

std::optional<QString> coverFinding(const Album &album, bool onDevice, ImageChecks &images)
{
    const std::optional<QByteArray> image = album.artworkBytes();
    if (!image) {
        return QStringLiteral("Brak odczytanej okładki. Wybierz obraz, aby naprawić album.");
    }
    if (const std::optional<QString> &issue = images.issue(*image)) {
        return issue;
    }
    if (onDevice && !allHaveExternalCovers(album.tracks)) {
        return QStringLiteral("Okładka dostępna w bibliotece, ale brakuje pliku przy części utworów na iPodzie. Zapisz "
                              "wersję dla Rockbox.");
    }
    return std::nullopt;
}

std::optional<QString> tagFinding(const QMap<QString, QString> &tags)
{
    static const std::array<std::pair<QString, QString>, 3> required {
        std::pair(QStringLiteral("TITLE"), QStringLiteral("tytuł")),
        std::pair(QStringLiteral("ARTIST"), QStringLiteral("wykonawca")),
        std::pair(QStringLiteral("ALBUM"), QStringLiteral("album"))};
    QStringList missing;
    for (const auto &[key, label] : required) {
        if (tags.value(key).trimmed().isEmpty()) {
            missing.append(label);
        }
    }
    if (missing.isEmpty()) {
        return std::nullopt;
    }
    return QStringLiteral("Nie odczytano tagów: ") + missing.join(QStringLiteral(", "))
        + QStringLiteral(". Nazwy w bibliotece mogą pochodzić z folderów.");
}

} // namespace

namespace CollectionQuality {

std::vector<QualityIssue> inspect(
    const std::vector<Track> &tracks, const std::optional<std::filesystem::path> &deviceRoot)
{
    std::vector<QualityIssue> issues;
    ImageChecks images;
    for (Album &album : AlbumGrouping::albums(tracks)) {
        if (const auto finding = coverFinding(album, deviceRoot.has_value(), images)) {
            issues.push_back({QualityKind::covers, album.title, *finding, std::move(album.tracks)});
        }
    }
    for (const Track &track : tracks) {
        if (!Files::exists(track.url)) {
            const QString gone = QStringLiteral("Plik nie jest już dostępny w zapisanej lokalizacji.");
            issues.push_back({QualityKind::files, track.title, gone, {track}});
        } else if (const auto finding = tagFinding(track.info.tags)) {
            issues.push_back({QualityKind::tags, track.title, *finding, {track}});
        }
    }
    sortIssues(issues);
    return issues;
}

} // namespace CollectionQuality
