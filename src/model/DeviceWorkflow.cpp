// How devices are found, chosen, lost and ejected.
#include "model/Model.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/files/FolderItems.h"
#include "platform/volumes/Volumes.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

std::vector<std::filesystem::path> backupsIn(const std::filesystem::path &root)
{
    std::vector<std::filesystem::path> backups;
    for (const Files::FolderItem &item : Files::readableItemsOf(root)) {
        if (!item.name.starts_with('.')) {
            backups.push_back(root / item.name);
        }
    }
    // Their names begin with the date.
    std::sort(backups.begin(), backups.end(), [](const auto &a, const auto &b) { return a.filename() > b.filename(); });
    return backups;
}

} // namespace

void MarluneModel::refresh()
{
    if (!m_finder.begin()) {
        return;
    }
    runRefresh();
    QTimer::singleShot(m_environment.discoveryTimeout, this, [this, discovery = m_finder.latest()] {
        if (m_finder.isRunning(discovery)) {
            m_work.setStatus(
                QStringLiteral("Urządzenie nie odpowiada. Możesz nadal korzystać z biblioteki i poradnika."));
        }
    });
    readBackups();
}

QCoro::Task<> MarluneModel::runRefresh()
{
    const QPointer<MarluneModel> self(this);
    std::vector<Device> found;
    try {
        auto discover = [discovery = m_environment.deviceDiscovery] { return discovery(); };
        found = co_await background(discover, JobPriority::Discovery);
    } catch (const std::exception &) {
        found.clear(); // no device could be read: the list is empty
    }
    if (self) {
        applyDevices(std::move(found));
    }
}

/// For changes that this model knows of: a discovery under way may have looked too early, so one more follows it.
void MarluneModel::rediscover()
{
    m_finder.repeatAfterwards();
    refresh();
}

void MarluneModel::applyDevices(std::vector<Device> found)
{
    using Selection = DeviceFinder::Outcome::Selection;
    const DeviceFinder::Outcome outcome = m_finder.finish(std::move(found), m_device, m_ejecting.has_value());
    if (outcome.selection == Selection::Update) {
        setDevice(outcome.update);
    } else if (outcome.selection == Selection::Lost) {
        disconnect();
    }
    if (!m_device && outcome.sole) {
        forgetThemePreviews(); // those of the device before
        setDevice(outcome.sole);
    }
    loadDeviceContent();
    if (outcome.listChanged) {
        Q_EMIT devicesChanged();
    }
    if (outcome.again) {
        refresh();
    }
}

/// In the background, since a home folder on a network can hang as a device can; one reading at a time.
void MarluneModel::readBackups()
{
    m_backupsOutdated = true;
    if (!m_readingBackups) {
        runBackupsReading();
    }
}

QCoro::Task<> MarluneModel::runBackupsReading()
{
    const QPointer<MarluneModel> self(this);
    m_readingBackups = true;
    while (std::exchange(m_backupsOutdated, false)) {
        auto work = [root = backupRoot()] { return backupsIn(root); };
        auto backups = co_await attempt(work, JobPriority::Utility);
        if (!self) {
            co_return;
        }
        if (backups.value && m_backups != *backups.value) {
            m_backups = std::move(*backups.value);
            Q_EMIT backupsChanged();
        }
    }
    m_readingBackups = false;
}

void MarluneModel::setDevice(const std::optional<Device> &device)
{
    if (m_device == device) {
        return;
    }
    bool wasKnown = false; // the volume before
    if (!m_device || !device || m_device->root != device->root) {
        ++m_visit;
        setOpenTheme(std::nullopt);
        wasKnown = std::exchange(m_content.volume, std::nullopt).has_value();
        wasKnown = std::exchange(m_content.hasMusicFolder, false) || wasKnown;
    }
    m_device = device;
    Q_EMIT deviceChanged();
    if (wasKnown) {
        Q_EMIT deviceSettingsChanged();
    }
}

void MarluneModel::setTransferred(std::vector<std::filesystem::path> files)
{
    if (m_transferred != files) {
        m_transferred = std::move(files);
        Q_EMIT transferredChanged();
    }
}

void MarluneModel::clearDeviceMusic()
{
    setTransferred({});
    if (libraryOnDevice()) {
        forgetDuplicates();
    }
    m_browsing.clearDevice();
    m_deviceReading = DeviceReading::None;
    onTracksChanged();
    Q_EMIT selectionChanged();
}

void MarluneModel::disconnect()
{
    abandonDeviceContent();
    setDevice(std::nullopt);
    m_playback.stop(); // an open file would keep a disk that is gone
    clearDeviceMusic();
    forgetDeviceContent();
    m_work.setStatus(QStringLiteral("iPod został odłączony"));
}

void MarluneModel::select(const Device &device)
{
    m_finder.onChoice();
    if (!m_device || m_device->root != device.root) {
        clearDeviceMusic();
        forgetThemePreviews();
    }
    setDevice(device);
    loadDeviceContent();
}

void MarluneModel::chooseDevice()
{
    const Panels::Request request {.files = false,
        .folders = true,
        .multiple = false,
        .prompt = QStringLiteral("Wybierz"),
        .message = QStringLiteral("Wybierz dysk iPoda lub folder testowy zawierający .rockbox.")};
    m_environment.panels.open(request, [self = QPointer(this)](const std::vector<std::filesystem::path> &chosen) {
        if (self && !chosen.empty()) {
            self->runChoice(chosen.front());
        }
    });
}

QCoro::Task<> MarluneModel::runChoice(std::filesystem::path folder)
{
    const QPointer<MarluneModel> self(this);
    const int choice = m_finder.onChoice();
    auto inspect = [folder = Files::standardized(folder)] { return Device::inspect(folder); };
    const auto device = co_await attempt(inspect, JobPriority::Discovery);
    if (!self || !m_finder.isLatestChoice(choice)) { // a later choice was answered sooner
        co_return;
    }
    if (device.failure) {
        m_work.setAlert(describeFailure(device.failure));
    } else if (m_work.busy()) { // the job that began meanwhile keeps its device
        m_work.setAlert(QStringLiteral("Trwa inna praca. Wybierz urządzenie jeszcze raz, gdy się zakończy."));
    } else {
        select(*device.value);
        m_work.setStatus(QStringLiteral("Wybrano: ") + Files::name(folder));
    }
}

void MarluneModel::eject()
{
    if (canEject()) {
        runEject(*m_device);
    }
}

QCoro::Task<> MarluneModel::runEject(Device device)
{
    const QPointer<MarluneModel> self(this);
    // The disk may take its time to write out what it holds; nothing else may start on it meanwhile.
    m_ejecting = device.root;
    m_unmountedWhileEjecting = false;
    // An open file would hold the volume.
    abandonDeviceContent();
    auto closeTrack = m_playback.release(device.root);
    m_work.begin(QStringLiteral("Wysuwam iPoda…"), RunningWork::Ends::AtItsEnd);
    auto ejectVolume = [ejector = m_environment.ejectVolume, root = device.root, closeTrack] {
        closeTrack();
        ejector(root);
    };
    const auto outcome = co_await attempt(ejectVolume);
    if (!self) {
        co_return;
    }
    m_ejecting.reset();
    m_playback.readmit();
    if (outcome.failure) {
        m_work.putStatusBack();
        m_work.setAlert(describeFailure(outcome.failure));
        if (m_unmountedWhileEjecting) {
            disconnect(); // the first half was done
        }
    } else {
        setDevice(std::nullopt);
        m_playback.stop();
        clearDeviceMusic();
        m_work.setStatus(QStringLiteral("Możesz odłączyć iPoda"));
        m_finder.onDiskLeft(device.root);
    }
    m_work.end(); // last: nobody is to see the device free for other work before it has gone
    rediscover();
}

void MarluneModel::volumeMounted()
{
    rediscover();
}

void MarluneModel::volumeUnmounted(const std::filesystem::path &mountPoint)
{
    m_finder.onDiskLeft(mountPoint);
    if (m_ejecting && *m_ejecting == mountPoint) {
        m_unmountedWhileEjecting = true; // our own doing: the eject reports how it ended
    } else if (m_device && m_device->root == mountPoint) {
        disconnect();
    }
    rediscover();
}
