#include "model/Model.h"

#include "platform/files/Files.h"
#include "platform/volumes/Volumes.h"

#include <QPointer>

#include <algorithm>

namespace {

constexpr double defaultTileSize = 170;
constexpr std::chrono::seconds drainTimeout {3};

// Settings of one device begin with these; its path follows.
const QString appearancePrefix = QStringLiteral("appearance-");
const QString finishPrefix = QStringLiteral("finish-");
const QString descriptionPrefix = QStringLiteral("deviceDescription-");

} // namespace

MarluneModel::MarluneModel(ModelEnvironment environment, QObject *parent)
    : QObject(parent)
    , m_environment(std::move(environment))
    , m_work({.busyChanged =
                     [this] {
                         Q_EMIT busyChanged();
                         Q_EMIT workingChanged();
                     },
                 .cancellingChanged = [this] { Q_EMIT cancellingChanged(); },
                 .progressChanged = [this] { Q_EMIT progressChanged(); },
                 .statusChanged = [this] { Q_EMIT statusChanged(); },
                 .alertChanged = [this] { Q_EMIT alertChanged(); }},
          m_environment.clock)
    , m_duplicates({.issuesChanged = [this] { Q_EMIT duplicateIssuesChanged(); },
          .statusChanged = [this] { Q_EMIT duplicateStatusChanged(); }})
{
    connect(
        this, &MarluneModel::themePreviewsChanged, this, [this] { ++m_previewRevision; }); // before others hear of it
    connect(this, &MarluneModel::deviceChanged, this, &MarluneModel::appearanceChanged);
    connect(this, &MarluneModel::deviceSettingsChanged, this, &MarluneModel::appearanceChanged);
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
                self->m_work.setAlert(QStringLiteral("Nie udało się zapisać ustawień: ") + reason);
            }
        });
    });

    if (!settings.notice().isEmpty()) {
        m_work.setAlert(settings.notice());
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
    m_work.cancel();
    (void)BackgroundJobs::drain(drainTimeout);
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

MarluneModel::JobProgress MarluneModel::postedProgress(std::vector<double> shares)
{
    return [self = QPointer(this), shares = std::move(shares)](int done, int total) {
        const std::size_t step = std::size_t(std::max(done, 1)) - 1;
        const std::optional<double> share = step < shares.size() ? std::optional(shares[step]) : std::nullopt;
        postToUi([self, progress = double(done) / std::max(total, 1), share] {
            if (self && self->m_work.busy()) {
                self->m_work.report(progress, share);
            }
        });
    };
}

std::filesystem::path MarluneModel::backupRoot() const
{
    return m_environment.supportFolder / "Marlune" / "Backups";
}

void MarluneModel::cancelWork()
{
    m_work.cancel();
    if (m_work.cancelling()) {
        m_coverRequest.reset();
    }
}

void MarluneModel::endCoverRequests()
{
    if (m_coverRequest) {
        cancelWork();
    }
}

void MarluneModel::dismissAlert()
{
    m_work.setAlert(std::nullopt);
}

void MarluneModel::setAppearance(const QString &id)
{
    setChoice(appearancePrefix, id);
}

void MarluneModel::setFinish(const QString &id)
{
    setChoice(finishPrefix, id);
}

std::optional<QString> MarluneModel::chosenAppearance() const
{
    return choice(appearancePrefix);
}

QString MarluneModel::deviceDescription() const
{
    return choice(descriptionPrefix).value_or(QString());
}

void MarluneModel::setDeviceDescription(const QString &text)
{
    if (!m_device || text == deviceDescription()) {
        return;
    }
    const QString key = descriptionPrefix + Files::text(m_device->root);
    if (text.isEmpty()) {
        m_environment.settings.remove(key);
    } else {
        m_environment.settings.setText(key, text);
    }
    Q_EMIT appearanceChanged();
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

std::optional<QString> MarluneModel::choice(const QString &prefix) const
{
    return m_device ? m_environment.settings.text(prefix + Files::text(m_device->root)) : std::nullopt;
}

const IPodProfile &MarluneModel::deviceProfile() const
{
    if (!m_device) {
        return IPodProfile::fallback();
    }
    if (const IPodProfile *chosen = IPodProfile::withId(choice(appearancePrefix).value_or(QString()))) {
        return *chosen;
    }
    const auto target = m_content.deviceInfo.constFind(QStringLiteral("Target"));
    return IPodProfile::automatic(target != m_content.deviceInfo.constEnd() ? std::optional(*target) : std::nullopt);
}

QString MarluneModel::deviceFinish() const
{
    return choice(finishPrefix).value_or(deviceProfile().finish);
}
