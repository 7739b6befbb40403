// Copying chosen music to the device with covers that the firmware shows: planned here, carried out by the floors
// below.
#include "model/Model.h"
#include "model/TransferPlan.h"

#include "artwork/Artwork.h"
#include "artwork/ArtworkInstall.h"

#include "storage/DeviceAnchor.h"
#include "storage/MacMetadata.h"
#include "storage/Transfer.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"

#include <QPointer>

#include <algorithm>
#include <chrono>

/// A plan, and the device that it is for.
struct MarluneModel::PlannedTransfer {
    TransferPlan plan;
    std::filesystem::path root;
    int visit; ///< of the device
    std::filesystem::path backupRoot;
};

/// How far a transfer came.
struct MarluneModel::EndedTransfer {
    TransferResult copying;
    std::size_t wholeCovers = 0; ///< of albums that were copied
    std::size_t covers = 0; ///< of those, written
    bool isStopped = false;
    std::exception_ptr failure;
};

namespace {

/// For so long covers are still begun behind a stop, wherever that came. An album is done with its cover only, and the
/// next run compares all files of one that is not; a cover takes a moment.
constexpr std::chrono::seconds coversAfterStop {10};

/// A failure names the album whose picture is unfit for a cover.
QByteArray preparedCover(const PlannedCover &cover)
{
    try {
        return Artwork::baselineJPEG(cover.artwork);
    } catch (const MarluneError &error) {
        throw MarluneError(error.message() + QStringLiteral(" (") + cover.album + u')');
    }
}

/// Blocking; fails at the first album whose cover cannot be prepared or written. Returns how many are, after a stop
/// perhaps fewer than all. `clock` says what time it is.
std::size_t installCovers(const std::vector<PlannedCover> &covers, const Storage::DeviceAnchor &device,
    const std::vector<std::filesystem::path> &destinations, const std::filesystem::path &backupRoot,
    const std::function<void(int done, int total)> &progress, const std::stop_token &stop,
    const std::function<TimeLeft::Moment()> &clock)
{
    std::optional<TimeLeft::Moment> end;
    std::size_t done = 0;
    while (done < covers.size()) {
        if (stop.stop_requested()) {
            const TimeLeft::Moment now = clock();
            end = end.value_or(now + coversAfterStop);
            if (now >= *end) {
                break;
            }
        }
        const PlannedCover &cover = covers[done];
        Artwork::install(preparedCover(cover), tracksOf(cover, destinations), device, backupRoot);
        progress(int(++done), int(covers.size()));
    }
    return done;
}

} // namespace

void MarluneModel::transfer(const std::optional<std::vector<Track>> &only)
{
    const std::vector<Track> items = only ? *only : queue();
    if (!m_device || m_work.busy() || items.empty()) {
        return;
    }
    auto transfer = std::make_shared<const PlannedTransfer>(
        PlannedTransfer {planTransfer(items, tracks()), m_device->root, m_visit, backupRoot()});
    m_work.begin(QStringLiteral("Wgrywam muzykę…"), RunningWork::Ends::BetweenFiles, transfer->plan.stages);
    runTransfer(std::move(transfer));
}

QCoro::Task<> MarluneModel::runTransfer(std::shared_ptr<const PlannedTransfer> transfer)
{
    const QPointer<MarluneModel> self(this);
    const std::stop_token stop = m_work.stopToken();
    const JobProgress copied = postedProgress(transfer->plan.shares);
    const JobProgress progress = postedProgress();
    std::shared_ptr<const Storage::DeviceAnchor> device; // one for all steps: another disk may come between two
    EndedTransfer ended;
    try {
        auto hold = [transfer] { return std::make_shared<const Storage::DeviceAnchor>(transfer->root); };
        device = co_await background(hold);
        if (!self) {
            co_return;
        }
        auto copy = [transfer, copied, device, stop] {
            return Storage::transfer(transfer->plan.files, *device, copied, stop);
        };
        ended.copying = co_await background(copy);
        if (!self) {
            co_return;
        }
        const std::vector<std::filesystem::path> &tracks = ended.copying.destinations;
        const std::vector<PlannedCover> covers = wholeCovers(transfer->plan, tracks.size());
        ended.wholeCovers = covers.size();
        if (!covers.empty()) {
            m_work.beginNextStage(QStringLiteral("Zapisuję okładki…"));
            auto cover = [transfer, covers, progress, device, tracks, stop, clock = m_environment.clock] {
                return installCovers(covers, *device, tracks, transfer->backupRoot, progress, stop, clock);
            };
            ended.covers = co_await background(cover);
            if (!self) {
                co_return;
            }
        }
        ended.isStopped = stop.stop_requested();
        if (!ended.isStopped) {
            m_work.beginNextStage(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
            auto clean = [transfer, device, stop] {
                return Storage::cleanupMacMetadata(*device, transfer->backupRoot, std::nullopt, stop).isStopped;
            };
            ended.isStopped = co_await background(clean);
        }
    } catch (const std::exception &) {
        ended.failure = std::current_exception();
    }
    auto look = [device] { return device && device->isReplaced(); };
    const auto seen = co_await attempt(look);
    if (self) {
        applyTransfer(*transfer, std::move(ended), seen.value.value_or(false));
    }
}

/// `isReplaced`: something else is at the place of the device that the files went to.
void MarluneModel::applyTransfer(const PlannedTransfer &transfer, EndedTransfer ended, bool isReplaced)
{
    if (isReplaced && m_visit == transfer.visit) {
        ++m_visit; // what is at its place now, noticed or not, holds none of the files that the lists name
        clearDeviceMusic();
    }
    const TransferResult &result = ended.copying;
    if (ended.failure) {
        m_work.setAlert(describeFailure(ended.failure)
            + QStringLiteral("\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki "
                             "zostaną pominięte."));
        m_work.setStatus(QStringLiteral("Transfer przerwany"));
    } else {
        m_browsing.dequeue(finishedItems(transfer.plan, result.destinations.size(), ended.covers));
        Q_EMIT selectionChanged();
        addTransferred(transfer.visit, result.destinations);
        const QString skipped = QStringLiteral(". Pominięto identyczne: ") + QString::number(result.skipped) + u'.';
        if (ended.isStopped) {
            const QString covers = ended.covers == ended.wholeCovers ? QString()
                                                                     : QStringLiteral(" Okładki: ")
                    + QString::number(ended.covers) + QStringLiteral(" z ") + QString::number(ended.wholeCovers) + u'.';
            m_work.setStatus(QStringLiteral("Przerwano: wgrano ") + QString::number(result.copied)
                + QStringLiteral(" z ") + QString::number(transfer.plan.files.size()) + QStringLiteral(" utworów")
                + skipped + covers);
        } else {
            m_work.setStatus(QStringLiteral("Wgrano: ") + QString::number(result.copied) + skipped);
            m_work.setAlert(m_work.status()
                + QStringLiteral("\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w "
                                 "menu Rockbox na iPodzie."));
        }
    }
    m_work.end();
    refresh();
}

void MarluneModel::addTransferred(int visit, std::vector<std::filesystem::path> files)
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
    if (!m_device || m_work.busy()) {
        return;
    }
    m_work.begin(QStringLiteral("Porządkuję pliki pomocnicze macOS…"), RunningWork::Ends::BetweenFiles);
    runCleanup(*m_device);
}

QCoro::Task<> MarluneModel::runCleanup(Device device)
{
    const QPointer<MarluneModel> self(this);
    auto clean = [root = device.root, backups = backupRoot(), stop = m_work.stopToken()] {
        return Storage::cleanupMacMetadata(Storage::DeviceAnchor(root), backups, std::nullopt, stop);
    };
    const auto cleanup = co_await attempt(clean);
    if (!self) {
        co_return;
    }
    if (cleanup.failure) {
        m_work.setAlert(describeFailure(cleanup.failure));
        m_work.setStatus(QStringLiteral("Nie udało się ukończyć porządków"));
    } else {
        const auto [removed, isStopped] = *cleanup.value;
        m_work.setStatus((isStopped ? QStringLiteral("Przerwano. ") : QString())
            + QStringLiteral("Usunięto pliki metadanych macOS: ") + QString::number(removed)
            + (isStopped && removed == 0 ? QStringLiteral(".") : QStringLiteral(". Kopia jest na Macu.")));
    }
    m_work.end();
    refresh();
}
