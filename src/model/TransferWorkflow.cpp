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

/// A plan, and the device that it is for.
struct MarluneModel::PlannedTransfer {
    TransferPlan plan;
    std::filesystem::path root;
    int visit; ///< of the device
    std::filesystem::path backupRoot;
};

namespace {

/// A failure names the album whose picture is unfit for a cover.
QByteArray preparedCover(const PlannedCover &cover)
{
    try {
        return Artwork::baselineJPEG(cover.artwork);
    } catch (const MarluneError &error) {
        throw MarluneError(error.message() + QStringLiteral(" (") + cover.album + u')');
    }
}

/// Blocking; stops at the first album whose cover cannot be prepared or written.
void installCovers(const std::vector<PlannedCover> &covers, const Storage::DeviceAnchor &device,
    const std::vector<std::filesystem::path> &destinations, const std::filesystem::path &backupRoot,
    const std::function<void(int done, int total)> &progress)
{
    int done = 0;
    for (const PlannedCover &cover : covers) {
        Artwork::install(preparedCover(cover), tracksOf(cover, destinations), device, backupRoot);
        progress(++done, int(covers.size()));
    }
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
    m_work.begin(QStringLiteral("Wgrywam muzykę…"), transfer->plan.stages);
    runTransfer(std::move(transfer));
}

QCoro::Task<> MarluneModel::runTransfer(std::shared_ptr<const PlannedTransfer> transfer)
{
    const QPointer<MarluneModel> self(this);
    const JobProgress copied = postedProgress(transfer->plan.shares);
    const JobProgress progress = postedProgress();
    std::shared_ptr<const Storage::DeviceAnchor> device; // one for all steps: another disk may come between two
    TransferResult result;
    std::exception_ptr failure;
    try {
        auto hold = [transfer] { return std::make_shared<const Storage::DeviceAnchor>(transfer->root); };
        device = co_await background(hold);
        if (!self) {
            co_return;
        }
        auto copy = [transfer, copied, device] { return Storage::transfer(transfer->plan.files, *device, copied); };
        result = co_await background(copy);
        if (!self) {
            co_return;
        }
        if (!transfer->plan.covers.empty()) {
            m_work.beginNextStage(QStringLiteral("Zapisuję okładki…"));
            auto cover = [transfer, progress, device, tracks = result.destinations] {
                installCovers(transfer->plan.covers, *device, tracks, transfer->backupRoot, progress);
            };
            co_await background(cover);
            if (!self) {
                co_return;
            }
        }
        m_work.beginNextStage(QStringLiteral("Porządkuję pliki pomocnicze macOS…"));
        auto clean = [transfer, device] { (void)Storage::cleanupMacMetadata(*device, transfer->backupRoot); };
        co_await background(clean);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    auto look = [device] { return device && device->isReplaced(); };
    const auto seen = co_await attempt(look);
    if (self) {
        applyTransfer(*transfer, std::move(result), seen.value.value_or(false), failure);
    }
}

/// `isReplaced`: something else is at the place of the device that the files went to.
void MarluneModel::applyTransfer(
    const PlannedTransfer &transfer, TransferResult result, bool isReplaced, const std::exception_ptr &failure)
{
    if (isReplaced && m_visit == transfer.visit) {
        ++m_visit; // what is at its place now, noticed or not, holds none of the files that the lists name
        clearDeviceMusic();
    }
    if (failure) {
        m_work.setAlert(describeFailure(failure)
            + QStringLiteral("\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki "
                             "zostaną pominięte."));
        m_work.setStatus(QStringLiteral("Transfer przerwany"));
    } else {
        m_browsing.dequeue(transfer.plan.ids);
        Q_EMIT selectionChanged();
        addTransferred(transfer.visit, std::move(result.destinations));
        m_work.setStatus(QStringLiteral("Wgrano: ") + QString::number(result.copied)
            + QStringLiteral(". Pominięto identyczne: ") + QString::number(result.skipped) + u'.');
        m_work.setAlert(m_work.status()
            + QStringLiteral("\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w menu "
                             "Rockbox na iPodzie."));
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
