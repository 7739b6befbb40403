#include "model/Model.h"

#include "platform/Files.h"
#include "platform/Volumes.h"

#include <QPointer>

#include <algorithm>

namespace {

constexpr double defaultTileSize = 170;
constexpr std::chrono::seconds drainPatience {3};

} // namespace

MarluneModel::MarluneModel(ModelEnvironment environment, QObject *parent)
    : QObject(parent)
    , m_environment(std::move(environment))
{
    forgetDuplicates();
    Settings &settings = m_environment.settings;
    m_viewMode = settings.text(QStringLiteral("viewMode")).value_or(viewModeText(ViewMode::Albums));
    if (const std::optional<QString> sortMode = settings.text(QStringLiteral("sortMode"))) {
        m_browsing.setSortMode(*sortMode);
    }
    const double storedSize = settings.number(QStringLiteral("tileSize")).value_or(0);
    m_tileSize = storedSize > 0 ? storedSize : defaultTileSize;
    settings.onWriteFailure([self = QPointer(this)](const QString &reason) {
        postToUi([self, reason] {
            if (self) {
                self->setAlert(QStringLiteral("Nie udało się zapisać ustawień: ") + reason);
            }
        });
    });

    if (!settings.notice().isEmpty()) {
        setAlert(settings.notice());
    }

    refresh();

    if (m_environment.restoreLibrary) {
        restoreLibrary();
    }
}

MarluneModel::~MarluneModel()
{
    m_environment.settings.onWriteFailure({});
    m_contentReading.request_stop();
    m_duplicateCheck.request_stop();
    (void)BackgroundJobs::drain(drainPatience);
}

void MarluneModel::setSection(Section section)
{
    if (m_section != section) {
        m_section = section;
        Q_EMIT sectionChanged();
    }
}

void MarluneModel::setSectionText(const QString &title)
{
    if (const std::optional<Section> section = sectionFromTitle(title)) {
        setSection(*section);
    }
}

void MarluneModel::setBusy(bool busy)
{
    if (m_busy != busy) {
        m_busy = busy;
        Q_EMIT busyChanged();
        Q_EMIT workingChanged();
    }
}

void MarluneModel::setProgress(double progress)
{
    if (m_progress != progress) {
        m_progress = progress;
        Q_EMIT progressChanged();
    }
}

void MarluneModel::beginWork(const QString &status, std::vector<TimeLeft::Expectation> stages)
{
    m_statusBefore = m_status;
    m_timeLeft.begin(std::move(stages), m_environment.clock());
    setProgress(0);
    setBusy(true);
    setWorkStatus(status);
}

void MarluneModel::beginNextStage(const QString &status)
{
    m_timeLeft.beginNextStage(m_environment.clock());
    setProgress(0);
    setWorkStatus(status);
}

void MarluneModel::setWorkStatus(const QString &status)
{
    m_workStatus = status;
    setStatus(status);
}

void MarluneModel::reportProgress(double progress, std::optional<double> share)
{
    m_timeLeft.report(share.value_or(progress), m_environment.clock());
    setProgress(progress);
}

MarluneModel::JobProgress MarluneModel::postedProgress(std::vector<double> shares)
{
    return [self = QPointer(this), shares = std::move(shares)](int done, int total) {
        const std::size_t step = std::size_t(std::max(done, 1)) - 1;
        const std::optional<double> share = step < shares.size() ? std::optional(shares[step]) : std::nullopt;
        postToUi([self, progress = double(done) / std::max(total, 1), share] {
            if (self && self->m_busy) {
                self->reportProgress(progress, share);
            }
        });
    };
}

void MarluneModel::putStatusBack()
{
    if (m_status == m_workStatus) {
        setStatus(m_statusBefore);
    }
}

void MarluneModel::endWork()
{
    m_timeLeft = {};
    setBusy(false);
}

std::optional<std::chrono::seconds> MarluneModel::timeLeft()
{
    return m_timeLeft.at(m_environment.clock());
}

std::filesystem::path MarluneModel::backupRoot() const
{
    return m_environment.supportFolder / "Marlune" / "Backups";
}

void MarluneModel::setStatus(const QString &status)
{
    if (m_status != status) {
        m_status = status;
        Q_EMIT statusChanged();
    }
}

void MarluneModel::setAlert(const std::optional<QString> &alert)
{
    if (m_alert != alert) {
        m_alert = alert;
        Q_EMIT alertChanged();
    }
}

void MarluneModel::dismissAlert()
{
    setAlert(std::nullopt);
}

void MarluneModel::setAppearance(const QString &id)
{
    setChoice(QStringLiteral("appearance-"), id);
}

void MarluneModel::setFinish(const QString &id)
{
    setChoice(QStringLiteral("finish-"), id);
}

void MarluneModel::setChoice(const QString &prefix, const QString &id)
{
    if (!m_device) {
        return;
    }
    const QString key = prefix + Files::text(m_device->root);
    if (id == QLatin1String("auto")) {
        m_environment.settings.remove(key);
    } else {
        m_environment.settings.setText(key, id);
    }
    Q_EMIT appearanceChanged();
}
