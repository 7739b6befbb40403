// The check for files that are identical: asked for by the user, in the background, with progress.
#include "model/Model.h"

#include "quality/CollectionQuality.h"

#include "platform/MarluneError.h"

#include <QPointer>

#include <utility>

namespace {

const QString comparing = QStringLiteral("Porównuję zawartość plików…");
const QString interrupted = QStringLiteral("Sprawdzanie przerwane — wynik nie jest kompletny.");

} // namespace

void MarluneModel::checkDuplicates()
{
    if (m_work.busy() || activeTracks().empty()) {
        return;
    }
    setDuplicates(QStringLiteral("Sprawdzam zawartość plików…"));
    m_checkingDuplicates = true;
    m_work.begin(comparing);
    runDuplicateCheck(activeTracks());
}

QCoro::Task<> MarluneModel::runDuplicateCheck(std::vector<Track> tracks)
{
    const QPointer<MarluneModel> self(this);
    m_duplicateCheck = std::stop_source();
    const std::stop_token stop = m_duplicateCheck.get_token();
    auto work = [tracks = std::move(tracks), progress = postedProgress(), stop] {
        return CollectionQuality::duplicates(tracks, progress, stop);
    };
    auto found = co_await attempt(work);
    if (!self) {
        co_return;
    }
    if (stop.stop_requested()) { // other tracks are shown now, and nothing is known of those
        if (m_work.status() == comparing) {
            m_work.setStatus(interrupted);
        }
    } else if (found.failure) {
        m_work.setAlert(describeFailure(found.failure));
        setDuplicates(interrupted);
        m_work.setStatus(interrupted);
    } else {
        const auto groups = QString::number(found.value->size());
        setDuplicates(QStringLiteral("Znaleziono grup identycznych plików: ") + groups
                + QStringLiteral(". Sprawdzone przez SHA-256."),
            std::move(found.value));
        m_work.setStatus(QStringLiteral("Sprawdzanie duplikatów zakończone"));
    }
    m_work.end();
    m_checkingDuplicates = false;
}

void MarluneModel::setDuplicates(const QString &status, std::optional<std::vector<QualityIssue>> found)
{
    if (m_duplicatesChecked || found) {
        m_duplicatesChecked = found.has_value();
        m_duplicateIssues = std::move(found).value_or(std::vector<QualityIssue> {});
        Q_EMIT duplicateIssuesChanged();
    }
    if (m_duplicateStatus != status) {
        m_duplicateStatus = status;
        Q_EMIT duplicateStatusChanged();
    }
}

void MarluneModel::forgetDuplicates()
{
    m_duplicateCheck.request_stop();
    setDuplicates(QStringLiteral("Duplikaty nie zostały jeszcze sprawdzone."));
}
