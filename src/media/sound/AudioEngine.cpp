#include "media/sound/AudioEngine.h"

#include "media/sound/Mpv.h"
#include "platform/files/Files.h"
#include "platform/files/RegularFile.h"
#include "platform/tasks/Background.h"

#include <string>
#include <utility>

namespace {

constexpr const char *protocol = "marlune";

/// libmpv's manual, "Options". Only libavformat's readers of the music formats are used: those of playlists, disc
/// images and stream descriptions, which open other files, are left out.
constexpr std::pair<const char *, const char *> options[] = {
    {"config", "no"},
    {"terminal", "no"},
    {"idle", "yes"},
    {"ytdl", "no"},
    {"load-scripts", "no"},
    {"osc", "no"},
    {"load-stats-overlay", "no"},
    {"load-osd-console", "no"},
    {"load-auto-profiles", "no"},
    {"input-default-bindings", "no"},
    {"input-builtin-bindings", "no"},
    {"input-media-keys", "no"},
    {"resume-playback", "no"},
    {"vid", "no"},
    {"vo", "null"},
    {"audio-display", "no"},
    {"sid", "no"},
    {"sub-auto", "no"},
    {"cover-art-auto", "no"},
    {"audio-file-auto", "no"},
    {"autoload-files", "no"},
    {"access-references", "no"},
    {"load-unsafe-playlists", "no"},
    {"ordered-chapters", "no"},
    {"demuxer", "lavf"},
    {"demuxer-lavf-allow-mimetype", "no"},
    {"demuxer-lavf-o", "format_whitelist=[mp3,flac,mov,aac,ogg,wav,aiff,ape,wv,mpc,mpc8,matroska]"},
    {"cache", "no"},
    {"gapless-audio", "no"}, // otherwise the end comes before the last sound is out
    {"audio-client-name", "Marlune"},
    {"ao", "pulse,pipewire,alsa"},
};

/// An open file, as a player reads it. One thread at a time.
class Stream {
public:
    Stream(std::shared_ptr<OfferedFile> offered, const std::shared_ptr<PendingEnds> &openFiles)
        : m_counted(openFiles)
        , m_offered(std::move(offered))
        , m_file(RegularFile::openOrThrow(m_offered->file))
    {
    }

    std::int64_t read(std::span<char> buffer)
    {
        const std::size_t count = m_file.readAt(m_position, buffer);
        m_position += std::int64_t(count);
        if (count == 0 && m_file.failure()) {
            m_offered->error = m_file.failure().value();
            return -1;
        }
        return std::int64_t(count);
    }

    std::int64_t seek(std::int64_t position) { return m_position = position; }
    [[nodiscard]] std::int64_t size() const { return m_file.size(); }

private:
    struct Counted {
        explicit Counted(std::shared_ptr<PendingEnds> openFiles)
            : files(std::move(openFiles))
        {
            files->begin();
        }
        ~Counted() { files->end(); }
        Counted(const Counted &) = delete;
        Counted &operator=(const Counted &) = delete;

        std::shared_ptr<PendingEnds> files;
    };

    Counted m_counted; // first: it ends when the file is closed
    std::shared_ptr<OfferedFile> m_offered;
    RegularFile m_file;
    std::int64_t m_position = 0;
};

void describeStream(mpv_stream_cb_info &info, Stream *stream)
{
    info.cookie = stream;
    info.read_fn = [](void *cookie, char *buffer, std::uint64_t size) -> std::int64_t {
        return static_cast<Stream *>(cookie)->read({buffer, std::size_t(size)});
    };
    info.seek_fn = [](void *cookie, std::int64_t position) -> std::int64_t {
        return static_cast<Stream *>(cookie)->seek(position);
    };
    info.size_fn = [](void *cookie) -> std::int64_t { return static_cast<Stream *>(cookie)->size(); };
    info.close_fn = [](void *cookie) { delete static_cast<Stream *>(cookie); };
}

} // namespace

void PendingEnds::begin()
{
    const std::lock_guard lock(m_mutex);
    ++m_count;
}

void PendingEnds::end()
{
    const std::lock_guard lock(m_mutex);
    --m_count;
    m_ended.notify_all(); // under the lock: the waiter may destroy this as soon as it sees the count
}

bool PendingEnds::none() const
{
    return waitForNone(std::chrono::milliseconds(0));
}

bool PendingEnds::waitForNone(std::chrono::milliseconds limit) const
{
    std::unique_lock lock(m_mutex);
    return m_ended.wait_for(lock, limit, [this] { return m_count == 0; });
}

/// Lives as long as libmpv's threads can call it, which is longer than the engine.
struct AudioEngine::Outside {
    /// libmpv's call for a new stream, on a thread of its own.
    static int open(void *self, char *address, mpv_stream_cb_info *info);

    std::function<void()> wake;
    std::shared_ptr<PendingEnds> openFiles;
    std::shared_ptr<PendingEnds> players;
    std::mutex mutex; ///< of what follows
    std::shared_ptr<OfferedFile> offered;
    QByteArray address;
    int offers = 0;
};

int AudioEngine::Outside::open(void *self, char *address, mpv_stream_cb_info *info)
{
    auto &outside = *static_cast<Outside *>(self);
    std::shared_ptr<OfferedFile> offered;
    {
        const std::lock_guard lock(outside.mutex);
        if (!outside.offered || outside.address != address) {
            return MPV_ERROR_LOADING_FAILED; // another file is wanted by now
        }
        offered = outside.offered;
        outside.openFiles->begin(); // before the offer can be withdrawn, so that nobody takes the file for closed
    }
    int result = MPV_ERROR_LOADING_FAILED;
    try {
        describeStream(*info, std::make_unique<Stream>(offered, outside.openFiles).release());
        result = 0;
    } catch (const std::system_error &failure) {
        offered->error = failure.code().value();
        offered->missing = !Files::exists(offered->file);
    } catch (const std::exception &) { // no memory
    }
    outside.openFiles->end();
    return result;
}

std::unique_ptr<AudioEngine> AudioEngine::make(const QByteArray &output, std::function<void()> wake,
    std::shared_ptr<PendingEnds> openFiles, std::shared_ptr<PendingEnds> players)
{
    const Mpv *library = Mpv::library();
    mpv_handle *handle = library ? library->create() : nullptr;
    if (!handle) {
        return nullptr;
    }
    auto outside = std::make_unique<Outside>();
    outside->wake = std::move(wake);
    outside->openFiles = std::move(openFiles);
    outside->players = std::move(players);
    outside->players->begin();
    std::unique_ptr<AudioEngine> engine(new AudioEngine(*library, handle, std::move(outside)));
    bool good = true;
    for (const auto &[name, value] : options) {
        good = library->setOptionString(handle, name, value) >= 0 && good;
    }
    if (!output.isEmpty()) {
        good = library->setOptionString(handle, "ao", output.constData()) >= 0 && good;
    }
    Outside *shared = engine->m_outside.get();
    if (!good || library->initialize(handle) < 0
        || library->streamCallbackAdd(handle, protocol, shared, &Outside::open) < 0) {
        return nullptr;
    }
    library->setWakeupCallback(handle, [](void *self) { static_cast<Outside *>(self)->wake(); }, shared);
    return engine;
}

AudioEngine::AudioEngine(const Mpv &library, mpv_handle *handle, std::unique_ptr<Outside> outside)
    : m_library(library)
    , m_handle(handle)
    , m_outside(std::move(outside))
{
}

AudioEngine::~AudioEngine()
{
    m_library.setWakeupCallback(m_handle, nullptr, nullptr);
    withdraw();
    auto end = [&library = m_library, handle = m_handle, outside = m_outside.get()] {
        library.terminateDestroy(handle);
        const std::shared_ptr<PendingEnds> players = outside->players;
        delete outside;
        players->end();
    };
    try {
        BackgroundJobs::startDetached(end);
    } catch (const std::system_error &) { // no thread to be had
        end();
    }
    (void)m_outside.release();
}

QByteArray AudioEngine::offer(std::shared_ptr<OfferedFile> file)
{
    const std::lock_guard lock(m_outside->mutex);
    m_outside->offered = std::move(file);
    m_outside->address = QByteArray(protocol) + "://" + QByteArray::number(++m_outside->offers);
    return m_outside->address;
}

void AudioEngine::withdraw()
{
    const std::lock_guard lock(m_outside->mutex);
    m_outside->offered.reset();
}
