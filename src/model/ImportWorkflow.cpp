// Files and folders become tracks of the library or of the device.
#include "library/LibraryScan.h"
#include "library/TrackReader.h"
#include "model/Model.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/tasks/Parallel.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QThread>

#include <algorithm>

namespace {

std::vector<QByteArray> artworkOf(const std::vector<Track> &tracks)
{
    std::vector<QByteArray> artwork;
    for (const Track &track : tracks) {
        // Neighbours share one buffer; what is handed twice all the same is pooled by its content.
        if (track.artwork && (artwork.empty() || artwork.back().constData() != track.artwork->constData())) {
            artwork.push_back(*track.artwork);
        }
    }
    return artwork;
}

/// What an import into a library of these tracks starts from.
TrackImport importInto(const std::vector<Track> &held)
{
    TrackImport import;
    for (const Track &track : held) {
        import.known.insert(Files::standardized(track.url).native());
    }
    import.artwork = artworkOf(held);
    return import;
}

} // namespace

/// An import that has been read, with the library that it gives.
struct MarluneModel::ImportReading {
    TracksRead read; ///< its tracks are the next field
    std::shared_ptr<const std::vector<Track>> tracks;
    LibraryContents base; ///< the library at the start
    LibraryContents made;
};

void MarluneModel::importMusic()
{
    const Panels::Request request {
        .files = true, .folders = true, .multiple = true, .prompt = QStringLiteral("Dodaj muzykę"), .message = {}};
    m_environment.panels.open(request, [self = QPointer(this)](const std::vector<std::filesystem::path> &chosen) {
        if (self) {
            self->importURLs(chosen, false, true);
        }
    });
}

void MarluneModel::importURLs(const std::vector<std::filesystem::path> &urls, bool fromDevice, bool enqueue)
{
    beginImport([urls](const std::stop_token &) { return urls; },
        fromDevice    ? ImportKind::Device
            : enqueue ? ImportKind::Enqueued
                      : ImportKind::Added);
}

void MarluneModel::beginImport(ImportSource source, ImportKind kind)
{
    if (m_work.busy()) {
        return;
    }
    m_isReadingMusic = true;
    m_work.begin(QStringLiteral("Odczytuję albumy…"), RunningWork::Ends::BetweenFiles);
    runImport(std::move(source), kind);
}

void MarluneModel::restoreLibrary()
{
    const QStringList stored = m_environment.settings.texts(QStringLiteral("libraryPaths"));
    if (stored.isEmpty()) {
        return;
    }
    m_unrestored = stored;
    const auto files = [stored](const std::stop_token &) {
        constexpr std::size_t portion = 1000;
        std::vector<std::filesystem::path> paths(std::size_t(stored.size()));
        Parallel::forEach(paths.size() / portion + 1, QThread::idealThreadCount(), [&](std::size_t number, int) {
            for (std::size_t at = number * portion; at < std::min((number + 1) * portion, paths.size()); ++at) {
                paths[at] = Files::fromText(stored[qsizetype(at)]);
            }
        });
        return paths;
    };
    beginImport(files, ImportKind::Restored);
}

QCoro::Task<> MarluneModel::runImport(ImportSource source, ImportKind kind)
{
    const QPointer<MarluneModel> self(this);
    const int visit = m_visit;
    const bool fromDevice = isFromDevice(kind);
    const Side side = fromDevice ? Side::Device : Side::Computer;
    int order = m_textOrder;
    std::shared_ptr<ImportReading> reading;
    std::exception_ptr failure;
    try {
        auto work = [source = std::move(source), base = m_browsing.contents(side), stop = m_work.stopToken(),
                        overrides = m_environment.settings.textMap(QStringLiteral("artworkOverrides")),
                        missing = kind == ImportKind::Restored ? Missing::Skip : Missing::Keep,
                        cache = m_environment.cache, read = m_environment.readTracks, progress = importProgress()]() {
            TrackImport import = importInto(*base.tracks);
            import.urls = source(stop);
            import.artworkOverrides = overrides;
            import.missing = missing;
            import.cache = cache;
            const auto result = std::make_shared<ImportReading>();
            result->read = read(std::move(import), progress, stop);
            if (missing == Missing::Skip && result->read.present == 0 && !result->read.isStopped) {
                return std::shared_ptr<ImportReading>();
            }
            result->base = base;
            result->tracks = std::make_shared<const std::vector<Track>>(std::move(result->read.tracks));
            result->made = base.prepared(result->tracks);
            return result;
        };
        reading = co_await background(work);
        while (self && reading && (!fromDevice || visit == m_visit)
            && (order != m_textOrder || !m_browsing.land(side, reading->base, reading->made))) {
            order = m_textOrder;
            reading->base = m_browsing.contents(side);
            auto again = [reading] { reading->made = reading->base.prepared(reading->tracks); };
            co_await background(again);
        }
    } catch (const std::exception &) {
        failure = std::current_exception(); // out of memory and the like: a file never fails an import
    }
    if (!self) {
        co_return;
    }
    m_isReadingMusic = false;
    if (failure) { // nothing lands, and the stored library stays as it is
        m_work.end();
        m_work.setStatus(QStringLiteral("Nie udało się odczytać muzyki"));
        m_work.setAlert(describeFailure(failure));
    } else if (!reading) {
        m_unrestored.clear(); // none of it is there any more
        m_work.end();
        m_work.putStatusBack();
    } else if (fromDevice && visit != m_visit) { // its files are not there, whatever device has come meanwhile
        m_work.end();
        m_work.setStatus(m_device
                ? QStringLiteral("iPod został zmieniony podczas odczytu. Odczytaj muzykę jeszcze raz.")
                : QStringLiteral("iPod został odłączony"));
    } else {
        applyImport(*reading, kind);
    }
    BackgroundJobs::discard(std::move(reading));
}

MarluneModel::JobProgress MarluneModel::importProgress()
{
    constexpr int interval = 20; // files
    constexpr int pause = 30; // milliseconds: more often nobody sees it
    const auto since = std::make_shared<QElapsedTimer>();
    return [self = QPointer(this), since](int done, int total) {
        if (done % interval != 1 || (since->isValid() && since->elapsed() < pause)) {
            return;
        }
        since->start();
        postToUi([self, done, total] {
            if (self && self->m_work.busy()) {
                self->m_work.report(double(done) / std::max(total, 1));
                self->m_work.setJobStatus(QStringLiteral("Odczytuję utwory: ") + QString::number(done)
                    + QStringLiteral(" / ") + QString::number(total));
            }
        });
    };
}

/// The tracks have landed.
void MarluneModel::applyImport(const ImportReading &reading, ImportKind kind)
{
    const TracksRead &read = reading.read;
    const bool fromDevice = isFromDevice(kind);
    const std::size_t count = reading.tracks->size();
    if (kind == ImportKind::Enqueued) {
        m_browsing.enqueue(*reading.tracks);
    }
    if (kind == ImportKind::Restored && !read.isStopped) {
        m_unrestored.clear();
    }
    const DeviceReading before = m_deviceReading;
    if (kind == ImportKind::WholeDevice && !read.isStopped) {
        m_deviceReading = DeviceReading::Complete;
    } else if (fromDevice && before == DeviceReading::None) {
        m_deviceReading = DeviceReading::Partial;
    }
    if (!fromDevice) {
        const bool isStored = kind == ImportKind::Restored && read.isAsGiven && count == tracks().size();
        if (!isStored) {
            storeLibraryPaths();
        }
        setLibraryOnDevice(false);
    }
    forgetDuplicates();
    if (count > 0 || m_deviceReading != before) {
        onTracksChanged();
        Q_EMIT selectionChanged();
    }
    m_work.end();
    const QString found = QStringLiteral("Odczytano utwory: ") + QString::number(count);
    if (read.isStopped) {
        const QString left
            = read.left > 0 ? QStringLiteral(". Pozostało: ") + QString::number(read.left) + u'.' : QStringLiteral(".");
        const QString rest = fromDevice    ? QStringLiteral(" Lista muzyki z iPoda jest niepełna.")
            : kind == ImportKind::Restored ? QStringLiteral(" Reszta biblioteki wróci przy następnym uruchomieniu.")
                                           : QString();
        m_work.setStatus(QStringLiteral("Przerwano. ") + found + left + rest);
    } else {
        m_work.setStatus(count == 0 ? QStringLiteral("Nie znaleziono nowych plików audio") : found);
    }
}

void MarluneModel::scanDeviceMusic()
{
    if (!m_device || m_work.busy()) {
        return;
    }
    m_browsing.clearDevice();
    m_deviceReading = DeviceReading::Partial;
    setLibraryOnDevice(true);
    forgetDuplicates();
    onTracksChanged();
    Q_EMIT selectionChanged();
    beginImport(
        [root = m_device->root](const std::stop_token &) { return deviceMusicFolders(root); }, ImportKind::WholeDevice);
}

void MarluneModel::storeLibraryPaths()
{
    QStringList paths;
    paths.reserve(qsizetype(tracks().size()) + m_unrestored.size());
    for (const Track &track : tracks()) {
        paths.append(Files::text(track.url));
    }
    if (!m_unrestored.isEmpty()) {
        const QSet<QString> held(paths.begin(), paths.end());
        m_unrestored.removeIf([&](const QString &path) { return held.contains(path); });
        paths.append(m_unrestored);
    }
    m_environment.settings.setTexts(QStringLiteral("libraryPaths"), paths);
}

void MarluneModel::forget(const Album &album)
{
    if (m_work.busy() || libraryOnDevice()) {
        return;
    }
    QSet<QUuid> ids;
    QSet<QString> folders;
    for (const Track &track : album.tracks) {
        ids.insert(track.id);
        folders.insert(Files::text(track.url.parent_path()));
    }
    m_browsing.remove(ids);
    if (!m_unrestored.isEmpty()) { // what a stopped reading has left of the album would come at the next start
        for (const Track &track : tracks()) {
            folders.remove(Files::text(track.url.parent_path())); // other albums' too
        }
        m_unrestored.removeIf([&](const QString &path) { return folders.contains(path.left(path.lastIndexOf(u'/'))); });
    }
    forgetDuplicates();
    storeLibraryPaths();
    onTracksChanged();
    Q_EMIT selectionChanged();
}
