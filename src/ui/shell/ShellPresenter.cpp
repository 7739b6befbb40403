#include "ui/shell/ShellPresenter.h"

#include "ui/LocalPath.h"
#include "ui/lists/FileDrag.h"
#include "ui/themes/ThemePictures.h"
#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/text/ByteCount.h"

#include <algorithm>

ShellPresenter::ShellPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_sections(model)
{
    m_change.follow(m_model, &MarluneModel::devicesChanged, &MarluneModel::deviceChanged, &MarluneModel::themesChanged,
        &MarluneModel::themePreviewsChanged, &MarluneModel::deviceSettingsChanged, &MarluneModel::selectionChanged,
        &MarluneModel::tracksChanged, &MarluneModel::progressChanged, &MarluneModel::workingChanged);
    connect(&m_model, &MarluneModel::sectionChanged, this, &ShellPresenter::sectionChanged);
    connect(&m_model, &MarluneModel::busyChanged, this, &ShellPresenter::onBusyChanged);
    connect(&m_model, &MarluneModel::cancellingChanged, this, &ShellPresenter::showTimeLeft);
    connect(&m_model, &MarluneModel::workingChanged, this, &ShellPresenter::closeWhenDone, Qt::QueuedConnection);
    connect(&m_model, &MarluneModel::alertChanged, this, &ShellPresenter::closeWhenDone, Qt::QueuedConnection);
    m_clock.setInterval(std::chrono::seconds(1));
    connect(&m_clock, &QTimer::timeout, this, &ShellPresenter::showTimeLeft);
    onBusyChanged();
    refresh();
}

void ShellPresenter::onBusyChanged()
{
    if (m_model.busy()) {
        m_clock.start();
    } else {
        m_clock.stop();
    }
    showTimeLeft();
    m_change.start();
}

void ShellPresenter::showTimeLeft()
{
    const std::optional<std::chrono::seconds> left = m_model.timeLeft();
    if (m_timeLeft != left) {
        m_timeLeft = left;
        Q_EMIT remainingChanged();
    }
}

QString ShellPresenter::remaining() const
{
    return m_timeLeft ? Wording::remainingText(*m_timeLeft) : QString();
}

void ShellPresenter::refresh()
{
    m_queuedTracks = m_model.queueCount();
    m_queuedBytes = m_model.queueBytes();
    Q_EMIT changed();
}

QString ShellPresenter::headline() const
{
    return AppLocalizer::text(m_model.busy() ? QStringLiteral("Pracuję…") : QStringLiteral("Gotowe do wgrania"));
}

QString ShellPresenter::queueLine() const
{
    return AppLocalizer::text(
        QString::number(m_queuedTracks) + QStringLiteral(" utworów · ") + byteCount(m_queuedBytes));
}

QString ShellPresenter::deviceName() const
{
    const std::optional<Device> &device = m_model.device();
    return device ? device->name : QString();
}

QString ShellPresenter::deviceVersion() const
{
    const std::optional<Device> &device = m_model.device();
    return device ? AppLocalizer::text(QStringLiteral("Rockbox · ") + device->version) : QString();
}

QString ShellPresenter::deviceSpace() const
{
    const std::optional<Device> &device = m_model.device();
    if (!device) {
        return {};
    }
    return AppLocalizer::text(
        byteCount(device->total) + QStringLiteral(" · ") + byteCount(device->available) + QStringLiteral(" wolne"));
}

double ShellPresenter::usedShare() const
{
    const std::optional<Device> &device = m_model.device();
    if (!device || device->total <= 0) {
        return 0;
    }
    return std::clamp(double(device->total - device->available) / double(device->total), 0.0, 1.0);
}

bool ShellPresenter::testFolder() const
{
    const std::optional<Device> &device = m_model.device();
    return device && !device->isVolume;
}

QString ShellPresenter::themeCount() const
{
    return AppLocalizer::text(QString::number(m_model.themes().size()) + QStringLiteral(" zainstalowanych motywów"));
}

QUrl ShellPresenter::themePicture() const
{
    return ThemePictures::ofConfiguredTheme(m_model);
}

QStringList ShellPresenter::offeredDevices() const
{
    QStringList names;
    if (!m_model.device()) {
        for (const Device &device : m_model.devices()) {
            names.append(device.name + QStringLiteral(" · ") + byteCount(device.total));
        }
    }
    return names;
}

void ShellPresenter::selectOffered(int place)
{
    if (!m_model.device() && place >= 0 && place < int(m_model.devices().size())) {
        m_model.select(m_model.devices()[std::size_t(place)]);
    }
}

void ShellPresenter::openDeviceFolder() const
{
    if (const std::optional<Device> &device = m_model.device()) {
        Desktop::open(device->root);
    }
}

QString ShellPresenter::trackFormat() const
{
    return FileDrag::trackFormat();
}

bool ShellPresenter::takesDrop(const QStringList &formats) const
{
    const bool isOfUse = FileDrag::isOwn(formats) || formats.contains(QStringLiteral("text/uri-list"));
    return isOfUse && !FileDrag::isFromDevice(formats) && !m_model.busy();
}

void ShellPresenter::queueDropped(const QByteArray &tracks, const QList<QUrl> &files)
{
    if (const QSet<QUuid> ids = FileDrag::tracks(tracks); !ids.isEmpty()) {
        m_model.enqueue(ids);
    } else if (const std::vector<std::filesystem::path> paths = localPaths(files); !paths.empty()) {
        m_model.importURLs(paths, false, true);
    }
}

bool ShellPresenter::requestClose()
{
    if (!m_model.working()) {
        return true;
    }
    setClosing(true);
    return false;
}

void ShellPresenter::stayOpen()
{
    setClosing(false);
}

void ShellPresenter::setClosing(bool closing)
{
    if (m_closing != closing) {
        m_closing = closing;
        if (closing) {
            m_model.endCoverRequests();
        }
        Q_EMIT closingChanged();
    }
}

void ShellPresenter::closeWhenDone()
{
    // A job's last word is read before the window goes; its end fills in more than one field, so this comes later.
    if (m_closing && !m_model.working() && (m_ending || !m_model.alert())) {
        setClosing(false);
        Q_EMIT mayCloseNow();
    }
}
