// Covers that the user gives to albums: a picture of theirs, or what is there made fit for the firmware.
//
// All end in applyArtwork(): the picture becomes the form that is always safe, goes beside the music where the album
// is on the device, and then into the store on the computer. Only after that do the settings and the tracks name it.
#include "library/TrackReader.h"
#include "model/Model.h"

#include "quality/CollectionQuality.h"

#include "artwork/Artwork.h"
#include "artwork/ArtworkInstall.h"

#include "library/AlbumGrouping.h"

#include "storage/DeviceAnchor.h"
#include "storage/FileChanges.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/files/Sha256.h"

#include <QPointer>

#include <algorithm>

/// A picture made ready, and its copy on the computer.
struct MarluneModel::PreparedCover {
    QByteArray image;
    std::filesystem::path stored;
};

namespace {

const QString overridesKey = QStringLiteral("artworkOverrides");

/// The album's name in the store: the same for each picture that it ever gets. Made of the native bytes: those that
/// are not UTF-8 tell two albums apart as well.
QString storeKey(const Album &album)
{
    const std::filesystem::path id = Files::fromText(album.id());
    return sha256Text(id.native());
}

/// The bytes of the file that the user chose; absent where it cannot be read. Throws MarluneError for one that is too
/// large for a picture.
std::optional<QByteArray> chosenPicture(const std::filesystem::path &file)
{
    std::optional<QByteArray> bytes = Files::readBelow(file, Artwork::maxFileBytes);
    if (!bytes && Files::size(file).value_or(0) >= Artwork::maxFileBytes) {
        throw MarluneError(QStringLiteral("Obraz jest nieobsługiwany."));
    }
    return bytes;
}

std::vector<std::filesystem::path> filesOf(const Album &album)
{
    std::vector<std::filesystem::path> files;
    files.reserve(album.tracks.size());
    for (const Track &track : album.tracks) {
        files.push_back(track.url);
    }
    return files;
}

/// Albums whose cover the firmware cannot show as it is, but that have a picture to make one of. None after a stop.
std::vector<Album> repairableAlbums(const std::vector<Track> &tracks,
    const std::optional<std::filesystem::path> &deviceRoot, const std::stop_token &stop)
{
    QSet<QUuid> flawed;
    for (const QualityIssue &issue : CollectionQuality::inspect(tracks, deviceRoot, stop)) {
        if (issue.kind == QualityKind::Covers) {
            for (const Track &track : issue.tracks) {
                flawed.insert(track.id);
            }
        }
    }
    std::vector<Album> albums = AlbumGrouping::albums(tracks);
    std::erase_if(albums, [&](const Album &album) {
        const bool isFlawed = std::any_of(
            album.tracks.begin(), album.tracks.end(), [&](const Track &track) { return flawed.contains(track.id); });
        return !isFlawed || !album.artworkBytes();
    });
    return albums;
}

} // namespace

MarluneModel::CoverPlace MarluneModel::coverPlace(std::optional<bool> onDeviceOverride) const
{
    return {.onDevice = onDeviceOverride.value_or(libraryOnDevice()),
        .root = m_device ? std::optional(m_device->root) : std::nullopt,
        .device = nullptr,
        .visit = m_visit};
}

/// Whether what is to be put on a device still finds it.
bool MarluneModel::isReachable(const CoverPlace &place) const
{
    return !place.onDevice || (m_device && m_visit == place.visit);
}

/// Takes hold of the device for a job that puts covers on it: a disk that comes to its place meanwhile gets none.
/// Fails as the anchor does.
QCoro::Task<MarluneModel::CoverPlace> MarluneModel::heldPlace(CoverPlace place)
{
    if (place.root && place.onDevice && isReachable(place)) {
        auto hold = [root = *place.root] { return std::make_shared<const Storage::DeviceAnchor>(root); };
        place.device = co_await background(hold);
    }
    co_return place;
}

void MarluneModel::setCoverLookup(const std::optional<Album> &album)
{
    if (m_coverLookup != album) {
        m_coverLookup = album;
        Q_EMIT coverLookupChanged();
    }
}

/// Blocking.
MarluneModel::PreparedCover MarluneModel::prepareCover(const Album &album, const QByteArray &data,
    const CoverPlace &place, const std::filesystem::path &supportFolder, const std::filesystem::path &backupRoot)
{
    QByteArray image = Artwork::baselineJPEG(data);
    if (place.onDevice) {
        if (!place.device) {
            throw MarluneError(QStringLiteral("Podłącz iPoda."));
        }
        Artwork::install(image, filesOf(album), *place.device, backupRoot);
    }
    std::filesystem::path stored = Artwork::cache(image, storeKey(album), supportFolder);
    return {.image = std::move(image), .stored = std::move(stored)};
}

QCoro::Task<> MarluneModel::applyArtwork(Album album, QByteArray data, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    if (!isReachable(place)) {
        place.device.reset(); // the device that is there now is not where the album is
    }
    auto prepare = [album, data, place, support = m_environment.supportFolder, backups = backupRoot()] {
        return prepareCover(album, data, place, support, backups);
    };
    const PreparedCover cover = co_await background(prepare);
    if (self) {
        recordArtwork(album, cover, place.onDevice);
    }
}

void MarluneModel::recordArtwork(const Album &album, const PreparedCover &cover, bool onDevice)
{
    QMap<QString, QString> overrides;
    const QString stored = Files::text(cover.stored);
    overrides.insert(album.id(), stored);
    QSet<QUuid> ids;
    for (const Track &track : album.tracks) {
        overrides.insert(overrideKey(track.artist, track.album, track.url.parent_path()), stored);
        ids.insert(track.id);
    }
    m_environment.settings.insertTexts(overridesKey, overrides);

    setArtwork(ids, cover.image, onDevice);
}

void MarluneModel::chooseArtwork(const Album &album, bool current, std::optional<bool> onDeviceOverride)
{
    if (m_work.busy()) {
        return;
    }
    const CoverPlace place = coverPlace(onDeviceOverride);
    if (current) {
        if (const std::optional<QByteArray> own = album.artworkBytes()) {
            runArtworkChoice(album, [own] { return own; }, place);
        }
        return;
    }
    m_environment.panels.open(Panels::Request::onePicture(QStringLiteral("Dodaj okładkę")),
        [self = QPointer(this), album, place](const std::vector<std::filesystem::path> &chosen) {
            if (!self || self->m_work.busy() || chosen.empty()) {
                return;
            }
            self->runArtworkChoice(album, [file = chosen.front()] { return chosenPicture(file); }, place);
        });
}

QCoro::Task<> MarluneModel::runArtworkChoice(Album album, PictureSource source, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    m_work.begin(QStringLiteral("Przygotowuję okładkę…"), RunningWork::Ends::AtItsEnd);
    std::optional<QByteArray> picture;
    std::exception_ptr failure;
    try {
        auto holding = heldPlace(place);
        place = co_await holding;
        picture = co_await background(source);
        if (self && picture) {
            auto applying = applyArtwork(album, *picture, place);
            co_await applying;
        }
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    if (failure) {
        m_work.setAlert(describeFailure(failure));
        m_work.setStatus(QStringLiteral("Nie udało się zapisać okładki"));
    } else if (!picture) {
        m_work.putStatusBack(); // the file cannot be read: as if none had been chosen
    } else {
        m_work.setStatus(place.onDevice
                ? QStringLiteral("Okładka zapisana na iPodzie. Poprzednie obrazy mają kopię na Macu.")
                : QStringLiteral("Okładka przygotowana; zostanie wgrana razem z albumem."));
    }
    m_work.end();
    refresh();
}

void MarluneModel::repairAvailableCovers()
{
    if (!m_work.busy()) {
        m_work.begin(m_work.status(), RunningWork::Ends::BetweenFiles, {std::nullopt, std::nullopt});
        runRepair(coverPlace());
    }
}

QCoro::Task<> MarluneModel::runRepair(CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    const std::stop_token stop = m_work.stopToken();
    // It asks the disk for each file.
    auto choose = [tracks = sharedTracks(), root = place.onDevice ? place.root : std::nullopt, stop] {
        return repairableAlbums(*tracks, root, stop);
    };
    std::vector<Album> albums;
    std::exception_ptr failure;
    try {
        auto holding = heldPlace(place);
        place = co_await holding;
        albums = co_await background(choose);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    if (!failure && albums.empty() && stop.stop_requested()) {
        m_work.setStatus(QStringLiteral("Przerwano. Nie zmieniono żadnej okładki."));
        m_work.end();
        co_return;
    }
    if (failure || albums.empty()) {
        m_work.end();
        m_work.setAlert(failure ? describeFailure(failure)
                                : QStringLiteral("Brak dostępnych obrazów do automatycznej naprawy. Przy brakującej "
                                                 "okładce wybierz plik obrazu."));
        co_return;
    }
    m_work.beginNextStage(QStringLiteral("Naprawiam dostępne okładki…"));
    int repaired = 0;
    int failed = 0;
    QStringList losses;
    for (const Album &album : albums) {
        if (stop.stop_requested()) {
            break;
        }
        try {
            auto applying = applyArtwork(album, album.artworkBytes().value(), place);
            co_await applying;
            ++repaired;
        } catch (const Storage::UndoFailure &undo) {
            ++failed;
            losses.append(undo.message());
        } catch (const std::exception &) {
            ++failed; // the next album may fare better
        }
        if (!self) {
            co_return;
        }
        m_work.report(double(repaired + failed) / double(albums.size()));
    }
    reportRepair(repaired, failed, int(albums.size()), place.onDevice, losses);
    m_work.end();
    refresh();
}

/// `losses`: what the user has to know beside the counts.
void MarluneModel::reportRepair(int repaired, int failed, int total, bool onDevice, const QStringList &losses)
{
    const QString counts = QStringLiteral(". Nie udało się naprawić: ") + QString::number(failed) + u'.';
    if (repaired + failed < total) {
        m_work.setStatus(QStringLiteral("Przerwano. Naprawione albumy: ") + QString::number(repaired)
            + QStringLiteral(" z ") + QString::number(total) + counts);
        setAlert({}, losses);
    } else {
        m_work.setStatus(QStringLiteral("Naprawione albumy: ") + QString::number(repaired) + counts);
        setAlert(m_work.status() + u'\n'
                + (onDevice ? QStringLiteral("Poprzednie obrazy z iPoda mają kopię na Macu.")
                            : QStringLiteral("Okładki są gotowe do wgrania razem z albumami."))
                + QStringLiteral("\nBrakujące lub nieczytelne obrazy wymagają wyboru nowej okładki."),
            losses);
    }
}

/// Shows `text`, if there is one, and each of the `losses` after it.
void MarluneModel::setAlert(const QString &text, const QStringList &losses)
{
    const QStringList parts = text.isEmpty() ? losses : QStringList(text) + losses;
    if (!parts.isEmpty()) {
        m_work.setAlert(parts.join(QStringLiteral("\n\n")));
    }
}
