// Copying chosen music to the device with covers that the firmware shows: planned here, carried out by the floors
// below.
#include "model/Model.h"
#include "model/TrackReader.h"

#include "artwork/Artwork.h"
#include "artwork/ArtworkInstall.h"

#include "library/AlbumGrouping.h"

#include "storage/DeviceAnchor.h"
#include "storage/MacMetadata.h"
#include "storage/Transfer.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"

#include <QHash>
#include <QPointer>

#include <algorithm>
#include <map>

/// One album's tracks in one folder of the computer, and the cover that they get.
struct MarluneModel::PlannedCover {
    QString album; ///< as the user knows it
    QByteArray artwork;
    std::vector<std::size_t> items; ///< places in the plan's files
};

struct MarluneModel::TransferPlan {
    std::filesystem::path root;
    int visit; ///< of the device
    std::filesystem::path backupRoot;
    std::vector<TransferFile> files;
    std::vector<PlannedCover> covers;
    QSet<QUuid> ids; ///< of the tracks that the files come from
};

std::vector<MarluneModel::PlannedCover> MarluneModel::planCovers(const std::vector<Track> &items)
{
    std::map<QString, PlannedCover> groups;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Track &track = items[i];
        PlannedCover &group = groups[overrideKey(track.artist, track.album, track.url.parent_path())];
        group.album = track.artist + QStringLiteral(" – ") + track.album;
        group.items.push_back(i);
        if (group.artwork.isEmpty()) {
            group.artwork = track.artwork.value_or(QByteArray());
        }
    }
    std::vector<PlannedCover> covers;
    for (auto &[key, group] : groups) {
        if (!group.artwork.isEmpty()) {
            covers.push_back(std::move(group));
        }
    }
    return covers;
}

MarluneModel::TransferPlan MarluneModel::planTransfer(const std::vector<Track> &items) const
{
    // The whole library, not the items: a disc that is sent alone still gets its disc folder.
    const std::vector<Album> albums = AlbumGrouping::albums(m_tracks);
    struct Place {
        const Album *album;
        bool severalDiscs;
    };
    QHash<QUuid, Place> places;
    for (const Album &album : albums) {
        const bool severalDiscs = album.discs().size() >= 2;
        for (const Track &track : album.tracks) {
            places.insert(track.id, {&album, severalDiscs});
        }
    }
    TransferPlan plan {.root = m_device->root,
        .visit = m_visit,
        .backupRoot = backupRoot(),
        .files = {},
        .covers = planCovers(items),
        .ids = {}};
    plan.files.reserve(items.size());
    for (const Track &track : items) {
        plan.ids.insert(track.id);
        const auto place = places.constFind(track.id);
        if (place == places.constEnd()) {
            plan.files.push_back({track.url, track.artist, track.album, std::nullopt});
            continue;
        }
        std::optional<QString> disc;
        if (place->severalDiscs) {
            disc = QStringLiteral("CD ") + QString::number(AlbumGrouping::describe(track).disc);
        }
        plan.files.push_back({track.url, place->album->artist, place->album->title, disc});
    }
    return plan;
}

void MarluneModel::transfer(const std::optional<std::vector<Track>> &only)
{
    const std::vector<Track> items = only ? *only : queue();
    if (!m_device || m_busy || items.empty()) {
        return;
    }
    auto plan = std::make_shared<const TransferPlan>(planTransfer(items));
    setBusy(true);
    setProgress(0);
    setStatus(QStringLiteral("Wgrywam muzykę…"));
    runTransfer(std::move(plan));
}

/// Says of which album a cover is none.
QByteArray MarluneModel::preparedCover(const PlannedCover &cover)
{
    try {
        return Artwork::baselineJPEG(cover.artwork);
    } catch (const MarluneError &error) {
        throw MarluneError(error.message() + QStringLiteral(" (") + cover.album + u')');
    }
}

/// Blocking; stops at the first album whose cover cannot be prepared or written.
void MarluneModel::installCovers(const TransferPlan &plan, const Storage::DeviceAnchor &device,
    const std::vector<std::filesystem::path> &destinations, const JobProgress &progress)
{
    int done = 0;
    for (const PlannedCover &cover : plan.covers) {
        std::vector<std::filesystem::path> tracks;
        for (const std::size_t item : cover.items) {
            if (item < destinations.size()) {
                tracks.push_back(destinations[item]);
            }
        }
        Artwork::install(preparedCover(cover), tracks, device, plan.backupRoot);
        progress(++done, int(plan.covers.size()));
    }
}

QCoro::Task<> MarluneModel::runTransfer(std::shared_ptr<const TransferPlan> plan)
{
    const QPointer<MarluneModel> self(this);
    const JobProgress progress = postedProgress();
    std::shared_ptr<const Storage::DeviceAnchor> device; // one for all steps: another disk may come between two
    TransferResult result;
    std::exception_ptr failure;
    try {
        auto hold = [plan] { return std::make_shared<const Storage::DeviceAnchor>(plan->root); };
        device = co_await background(hold);
        auto copy = [plan, progress, device] { return Storage::transfer(plan->files, *device, progress); };
        result = co_await background(copy);
        if (!self) {
            co_return;
        }
        if (!plan->covers.empty()) {
            setStatus(QStringLiteral("Zapisuję okładki…"));
            setProgress(0);
            auto cover = [plan, progress, device, tracks = result.destinations] {
                installCovers(*plan, *device, tracks, progress);
            };
            co_await background(cover);
            if (!self) {
                co_return;
            }
        }
        setStatus(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
        setProgress(0);
        auto clean = [plan, device] { (void)Storage::cleanupMacMetadata(*device, plan->backupRoot); };
        co_await background(clean);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    auto look = [device] { (void)device->require(); };
    bool isThere = false;
    if (device) {
        const auto seen = co_await attempt(look);
        isThere = !seen.failure;
    }
    if (self) {
        landTransfer(*plan, std::move(result), isThere, failure);
    }
}

/// `isThere`: the device that the files went to is still at its place.
void MarluneModel::landTransfer(
    const TransferPlan &plan, TransferResult result, bool isThere, const std::exception_ptr &failure)
{
    if (!isThere && m_visit == plan.visit) {
        ++m_visit; // what is at its place now, noticed or not, holds none of the files that the lists name
        clearDeviceMusic();
    }
    if (failure) {
        setAlert(describeFailure(failure)
            + QStringLiteral("\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki "
                             "zostaną pominięte."));
        setStatus(QStringLiteral("Transfer przerwany"));
    } else {
        m_queued.subtract(plan.ids);
        Q_EMIT selectionChanged();
        noteTransferred(plan.visit, std::move(result.destinations));
        setStatus(QStringLiteral("Wgrano: ") + QString::number(result.copied)
            + QStringLiteral(". Pominięto identyczne: ") + QString::number(result.skipped) + u'.');
        setAlert(m_status
            + QStringLiteral("\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w menu "
                             "Rockbox na iPodzie."));
    }
    setBusy(false);
    refresh();
}

void MarluneModel::noteTransferred(int visit, std::vector<std::filesystem::path> files)
{
    if (m_visit != visit) {
        return; // the list is the selected device's
    }
    files.insert(files.end(), m_transferred.begin(), m_transferred.end());
    std::sort(files.begin(), files.end(), isBeforeAsText);
    files.erase(std::unique(files.begin(), files.end()), files.end());
    setTransferred(std::move(files));
}

void MarluneModel::cleanupMacFiles()
{
    if (!m_device || m_busy) {
        return;
    }
    setBusy(true);
    setProgress(0);
    setStatus(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
    runCleanup(*m_device);
}

QCoro::Task<> MarluneModel::runCleanup(Device device)
{
    const QPointer<MarluneModel> self(this);
    auto clean = [root = device.root, backups = backupRoot()] { return Storage::cleanupMacMetadata(root, backups); };
    const auto removed = co_await attempt(clean);
    if (!self) {
        co_return;
    }
    if (removed.failure) {
        setAlert(describeFailure(removed.failure));
        setStatus(QStringLiteral("Nie udało się ukończyć porządków"));
    } else {
        setStatus(QStringLiteral("Usunięto pliki metadanych macOS: ") + QString::number(*removed.value)
            + QStringLiteral(". Kopia jest na Macu."));
    }
    setBusy(false);
    refresh();
}
