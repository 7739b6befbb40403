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
    const std::stop_token stop = m_duplicates.begin();
    m_work.begin(comparing);
    runDuplicateCheck(activeTracks(), stop);
}

QCoro::Task<> MarluneModel::runDuplicateCheck(std::vector<Track> tracks, std::stop_token stop)
{
    const QPointer<MarluneModel> self(this);
    auto work = [tracks = std::move(tracks), progress = postedProgress(), stop] {
        return CollectionQuality::duplicates(tracks, progress, stop);
    };
    auto found = co_await attempt(work);
    if (!self) {
        co_return;
    }
    if (stop.stop_requested()) { // other tracks are shown now, and nothing is known of those
        if (m_work.status() == comparing) {
            m_work.setStatus(DuplicateCheck::interrupted());
        }
    } else if (found.failure) {
        m_work.setAlert(describeFailure(found.failure));
        m_duplicates.fail();
        m_work.setStatus(DuplicateCheck::interrupted());
    } else {
        m_duplicates.finish(std::move(*found.value));
        m_work.setStatus(QStringLiteral("Sprawdzanie duplikatów zakończone"));
    }
    m_work.end();
    m_duplicates.end();
}
