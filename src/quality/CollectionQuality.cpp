#include "quality/CollectionQuality.h"

#include "artwork/Artwork.h"
#include "library/AlbumGrouping.h"

#include "platform/files/CaselessFolder.h"
#include "platform/files/Files.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <string_view>
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

std::string_view folderOf(const std::filesystem::path &file)
{
    const std::string_view path = file.native();
    return path.substr(0, path.find_last_of('/'));
}

/// The tracks of one album, in its order.
using AlbumTracks = std::vector<const Track *>;

AlbumTracks tracksOf(const AlbumGrouping::Group &album, const std::vector<Track> &all)
{
    AlbumTracks tracks(album.tracks.size());
    std::transform(
        album.tracks.begin(), album.tracks.end(), tracks.begin(), [&](std::size_t place) { return &all[place]; });
    return tracks;
}

/// Whether Artwork::externalCoverExists() holds for all tracks; a folder is asked once for those of it that follow each
/// other.
bool allHaveExternalCovers(const AlbumTracks &tracks)
{
    std::optional<std::string_view> folder;
    CaselessFolder items;
    bool folderHasCover = false;
    return std::all_of(tracks.begin(), tracks.end(), [&](const Track *track) {
        if (const std::string_view itsFolder = folderOf(track->url); itsFolder != folder) {
            folder = itsFolder;
            items = CaselessFolder(track->url.parent_path());
            folderHasCover = Artwork::folderCoverExists(items);
        }
        return folderHasCover || Artwork::ownCoverExists(*track, items);
    });
}

std::optional<QString> coverFinding(const AlbumTracks &tracks, bool onDevice, ImageChecks &images)
{
    const auto pictured
        = std::find_if(tracks.begin(), tracks.end(), [](const Track *track) { return track->artwork.has_value(); });
    if (pictured == tracks.end()) {
        return QStringLiteral("Brak odczytanej okładki. Wybierz obraz, aby naprawić album.");
    }
    if (const std::optional<QString> &issue = images.issue(*(*pictured)->artwork)) {
        return issue;
    }
    if (onDevice && !allHaveExternalCovers(tracks)) {
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
        const auto tag = tags.constFind(key);
        const auto isBlank = [](QChar c) { return c.isSpace(); };
        if (tag == tags.constEnd() || std::all_of(tag->begin(), tag->end(), isBlank)) {
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

std::vector<QualityIssue> inspect(const std::vector<Track> &tracks,
    const std::optional<std::filesystem::path> &deviceRoot, const std::stop_token &stop)
{
    std::vector<QualityIssue> issues;
    ImageChecks images;
    for (const AlbumGrouping::Group &album : AlbumGrouping::groups(tracks)) {
        if (stop.stop_requested()) {
            return {};
        }
        const AlbumTracks albumTracks = tracksOf(album, tracks);
        if (const auto finding = coverFinding(albumTracks, deviceRoot.has_value(), images)) {
            QualityIssue &issue = issues.emplace_back(QualityIssue {QualityKind::Covers, album.title, *finding, {}});
            for (const Track *track : albumTracks) {
                issue.tracks.push_back(*track);
            }
        }
    }
    for (const Track &track : tracks) {
        if (stop.stop_requested()) {
            return {};
        }
        if (!Files::exists(track.url)) {
            const QString gone = QStringLiteral("Plik nie jest już dostępny w zapisanej lokalizacji.");
            issues.push_back({QualityKind::Files, track.title, gone, {track}});
        } else if (const auto finding = tagFinding(track.info.tags)) {
            issues.push_back({QualityKind::Tags, track.title, *finding, {track}});
        }
    }
    sortIssues(issues);
    return issues;
}

} // namespace CollectionQuality
