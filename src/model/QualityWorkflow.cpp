// The check for files that are identical: asked for by the user, in the background, with progress.
#include "model/Model.h"

#include "quality/CollectionQuality.h"

#include "platform/MarluneError.h"

#include <QPointer>

#include <utility>

namespace {

const QString comparing = QStringLiteral("Porównuję zawartość plików…");

} // namespace

void MarluneModel::checkDuplicates()
{
    if (m_work.busy() || activeTracks().empty()) {
        return;
    }
    m_duplicates.begin();
    m_work.begin(comparing, RunningWork::Ends::BetweenFiles);
    runDuplicateCheck(sharedTracks());
}

/// Nothing is known of the tracks that are shown now, and what a running check would still find is of no use.
void MarluneModel::forgetDuplicates()
{
    m_duplicates.forget();
    if (m_duplicates.isRunning()) {
        m_work.cancel();
    }
}

QCoro::Task<> MarluneModel::runDuplicateCheck(std::shared_ptr<const std::vector<Track>> tracks)
{
    const QPointer<MarluneModel> self(this);
    auto work = [tracks = std::move(tracks), progress = postedProgress(), stop = m_work.stopToken()] {
        return CollectionQuality::duplicates(*tracks, progress, stop);
    };
    auto found = co_await attempt(work);
    if (!self) {
        co_return;
    }
    if (m_duplicates.isOvertaken()) {
        if (m_work.status() == comparing) {
            m_work.setStatus(DuplicateCheck::interrupted());
        }
    } else if (found.failure) {
        m_work.setAlert(describeFailure(found.failure));
        m_duplicates.interrupt();
        m_work.setStatus(DuplicateCheck::interrupted());
    } else if (!found.value->isComplete()) {
        m_duplicates.interrupt(std::move(found.value->groups));
        m_work.setStatus(QStringLiteral("Przerwano. Porównano pliki: ") + QString::number(found.value->compared)
            + QStringLiteral(" z ") + QString::number(found.value->candidates) + u'.');
    } else {
        m_duplicates.finish(std::move(found.value->groups));
        m_work.setStatus(QStringLiteral("Sprawdzanie duplikatów zakończone"));
    }
    m_work.end();
    m_duplicates.end();
}
