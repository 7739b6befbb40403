// Copying chosen music to the device with covers that the firmware shows: planned here, carried out by the floors
// below.
#include "model/Model.h"
#include "model/TrackReader.h"

#include "artwork/Artwork.h"
#include "artwork/ArtworkInstall.h"

#include "library/AlbumGrouping.h"

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
    Device device;
    std::filesystem::path backupRoot;
    std::vector<TransferFile> files;
    std::vector<PlannedCover> covers;
    QSet<QUuid> ids; ///< of the tracks that the files come from
    std::vector<double> shares; ///< of the copying that are done with each file
};

namespace {

// What is expected of the stages after the copying, on an iPod's hard disk.
constexpr TimeLeft::Seconds perCover {0.2};
constexpr TimeLeft::Seconds perCleanup {3};

/// How much of the copying is done with each of these files, if all their bytes and each file's end (its names, and the
/// disk's word that it has it) take the same time.
std::vector<double> copyingShares(const std::vector<Track> &items)
{
    constexpr double fileEnd = 500'000; // bytes copied in the same time
    std::vector<double> shares;
    double done = 0;
    for (const Track &track : items) {
        done += double(track.bytes) + fileEnd;
        shares.push_back(done);
    }
    for (double &share : shares) {
        share /= done;
    }
    return shares;
}

} // namespace

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
    const std::vector<Album> albums = AlbumGrouping::albums(tracks());
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
    TransferPlan plan {.device = *m_device,
        .backupRoot = backupRoot(),
        .files = {},
        .covers = planCovers(items),
        .ids = {},
        .shares = copyingShares(items)};
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
    if (!m_device || m_work.busy() || items.empty()) {
        return;
    }
    auto plan = std::make_shared<const TransferPlan>(planTransfer(items));
    std::vector<TimeLeft::Expectation> stages {std::nullopt};
    if (!plan->covers.empty()) {
        stages.emplace_back(perCover * double(plan->covers.size()));
    }
    stages.emplace_back(perCleanup);
    m_work.begin(QStringLiteral("Wgrywam muzykę…"), std::move(stages));
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
void MarluneModel::installCovers(
    const TransferPlan &plan, const std::vector<std::filesystem::path> &destinations, const JobProgress &progress)
{
    int done = 0;
    for (const PlannedCover &cover : plan.covers) {
        std::vector<std::filesystem::path> tracks;
        for (const std::size_t item : cover.items) {
            if (item < destinations.size()) {
                tracks.push_back(destinations[item]);
            }
        }
        Artwork::install(preparedCover(cover), tracks, plan.device.root, plan.backupRoot);
        progress(++done, int(plan.covers.size()));
    }
}

QCoro::Task<> MarluneModel::runTransfer(std::shared_ptr<const TransferPlan> plan)
{
    const QPointer<MarluneModel> self(this);
    const JobProgress copied = postedProgress(plan->shares);
    const JobProgress progress = postedProgress();
    TransferResult result;
    std::exception_ptr failure;
    try {
        auto copy = [plan, copied] { return Storage::transfer(plan->files, plan->device.root, copied); };
        result = co_await background(copy);
        if (!self) {
            co_return;
        }
        if (!plan->covers.empty()) {
            m_work.beginNextStage(QStringLiteral("Zapisuję okładki…"));
            auto cover = [plan, progress, tracks = result.destinations] { installCovers(*plan, tracks, progress); };
            co_await background(cover);
            if (!self) {
                co_return;
            }
        }
        m_work.beginNextStage(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
        auto clean = [plan] { (void)Storage::cleanupMacMetadata(plan->device.root, plan->backupRoot); };
        co_await background(clean);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (self) {
        landTransfer(*plan, std::move(result), failure);
    }
}

void MarluneModel::landTransfer(const TransferPlan &plan, TransferResult result, const std::exception_ptr &failure)
{
    if (failure) {
        m_work.setAlert(describeFailure(failure)
            + QStringLiteral("\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki "
                             "zostaną pominięte."));
        m_work.setStatus(QStringLiteral("Transfer przerwany"));
    } else {
        m_browsing.dequeue(plan.ids);
        Q_EMIT selectionChanged();
        noteTransferred(plan.device, std::move(result.destinations));
        m_work.setStatus(QStringLiteral("Wgrano: ") + QString::number(result.copied)
            + QStringLiteral(". Pominięto identyczne: ") + QString::number(result.skipped) + u'.');
        m_work.setAlert(m_work.status()
            + QStringLiteral("\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w menu "
                             "Rockbox na iPodzie."));
    }
    m_work.end();
    refresh();
}

void MarluneModel::noteTransferred(const Device &device, std::vector<std::filesystem::path> files)
{
    if (!m_device || m_device->root != device.root) {
        return; // the list is the selected device's
    }
    files.insert(files.end(), m_transferred.begin(), m_transferred.end());
    std::sort(files.begin(), files.end(), isBeforeAsText);
    files.erase(std::unique(files.begin(), files.end()), files.end());
    setTransferred(std::move(files));
}

void MarluneModel::cleanupMacFiles()
{
    if (!m_device || m_work.busy()) {
        return;
    }
    m_work.begin(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
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
        m_work.setAlert(describeFailure(removed.failure));
        m_work.setStatus(QStringLiteral("Nie udało się ukończyć porządków"));
    } else {
        m_work.setStatus(QStringLiteral("Usunięto pliki metadanych macOS: ") + QString::number(*removed.value)
            + QStringLiteral(". Kopia jest na Macu."));
    }
    m_work.end();
    refresh();
}
