// Copying chosen music to the device: the plan is made here, the copying is Storage's.
#include "model/Model.h"

#include "library/AlbumGrouping.h"

#include "storage/Transfer.h"

#include "platform/MarluneError.h"

#include <QHash>
#include <QPointer>

#include <algorithm>

struct MarluneModel::TransferPlan {
    Device device;
    std::vector<TransferFile> files;
    QSet<QUuid> ids; ///< of the tracks that the files come from
};

MarluneModel::TransferPlan MarluneModel::planTransfer(std::vector<Track> items) const
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
    TransferPlan plan {.device = *m_device, .files = {}, .ids = {}};
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
    std::vector<Track> items = only ? *only : queue();
    if (!m_device || m_busy || items.empty()) {
        return;
    }
    auto plan = std::make_shared<const TransferPlan>(planTransfer(std::move(items)));
    setBusy(true);
    setProgress(0);
    setStatus(QStringLiteral("Wgrywam muzykę…"));
    runTransfer(std::move(plan));
}

QCoro::Task<> MarluneModel::runTransfer(std::shared_ptr<const TransferPlan> plan)
{
    const QPointer<MarluneModel> self(this);
    auto work = [plan, self] {
        return Storage::transfer(plan->files, plan->device.root, [self](int done, int total) {
            postToUi([self, done, total] {
                if (self && self->m_busy) {
                    self->setProgress(double(done) / total);
                }
            });
        });
    };
    TransferResult result;
    std::exception_ptr failure;
    try {
        result = co_await background(work);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    if (failure) {
        setAlert(describeFailure(failure)
            + QStringLiteral("\n\nCzęść utworów mogła już zostać wgrana. Możesz ponowić transfer — identyczne pliki "
                             "zostaną pominięte."));
        setStatus(QStringLiteral("Transfer przerwany"));
    } else {
        m_queued.subtract(plan->ids);
        Q_EMIT selectionChanged();
        noteTransferred(plan->device, std::move(result.destinations));
        setStatus(QStringLiteral("Wgrano: ") + QString::number(result.copied)
            + QStringLiteral(". Pominięto identyczne: ") + QString::number(result.skipped) + u'.');
        setAlert(m_status
            + QStringLiteral("\n\nUtwory są dostępne w Files → Music. Jeśli używasz Database, zaktualizuj bazę w menu "
                             "Rockbox na iPodzie."));
    }
    setBusy(false);
    refresh();
}

void MarluneModel::noteTransferred(const Device &device, std::vector<std::filesystem::path> files)
{
    if (!m_device || m_device->root != device.root) {
        return; // the list is the selected device's
    }
    files.insert(files.end(), m_transferred.begin(), m_transferred.end());
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    setTransferred(std::move(files));
}
