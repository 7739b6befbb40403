#include "media/sound/AudioOutput.h"

#include "media/sound/AudioEngine.h"
#include "media/sound/Mpv.h"
#include "platform/tasks/Background.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <system_error>

namespace {

constexpr std::chrono::milliseconds engineTimeout {2'000}; ///< for letting go of a file
constexpr std::chrono::milliseconds releaseTimeout {3'000};
constexpr std::chrono::milliseconds endTimeout {1'000};

/// What a reply answers; travels with the number of the load in libmpv's "userdata".
enum class Request : std::uint8_t { Other, Load, Duration, Output, Position, Seek };
constexpr std::uint64_t requestKinds = 8;

/// What libmpv has said of its playlist's entries so far.
struct Seen {
    std::int64_t started = 0; ///< the entry begun last
    bool loaded = false; ///< and has sound, as its head says
    bool played = false; ///< and was heard, or soon will be
    bool running = false; ///< and plays: now, or again after a seek
    std::int64_t ended = 0; ///< the entry ended last
    mpv_event_end_file end {};
};

QString reasonOf(int error)
{
    switch (error) {
    case MPV_ERROR_UNKNOWN_FORMAT:
    case MPV_ERROR_LOADING_FAILED:
        return QStringLiteral("Nieznany format pliku");
    case MPV_ERROR_NOTHING_TO_PLAY:
        return QStringLiteral("Plik nie zawiera dźwięku");
    default:
        return QString::fromUtf8(Mpv::library()->errorString(error));
    }
}

/// As libmpv reads it.
QByteArray number(double value)
{
    return QByteArray::number(value, 'f', 6);
}

/// libmpv's own scale is the amplitude's cube root in percent.
QByteArray playerVolume(double volume)
{
    return number(100 * std::cbrt(std::clamp(volume, 0.0, 1.0)));
}

} // namespace

struct AudioOutput::Parts : std::enable_shared_from_this<Parts> {
    enum class Stage : std::uint8_t { Idle, Opening, Running };

    void makeEngine();
    void applyEngine(std::shared_ptr<AudioEngine> engine);
    void send();
    void command(Request request, std::initializer_list<const char *> words);
    void set(const char *property, const QByteArray &value);
    void ask(Request request, const char *property, mpv_format format);
    void after(std::chrono::milliseconds timeout, void (Parts::*judge)());
    void judgePlayer();
    void judgeOpening();
    void drain();
    void note(const mpv_event &event);
    void onReply(const mpv_event &event);
    void evaluate();
    void evaluateEnd();
    void onSound();
    void onSeekDone();
    void fail(Failure failure, const QString &reason);
    [[nodiscard]] std::uint64_t userdata(Request request) const
    {
        return m_load * requestKinds + std::uint64_t(request);
    }

    Listener m_listener;
    QByteArray m_output;
    std::chrono::milliseconds m_timeout {};
    std::shared_ptr<PendingEnds> m_openFiles = std::make_shared<PendingEnds>();
    std::shared_ptr<PendingEnds> m_players = std::make_shared<PendingEnds>();
    std::shared_ptr<AudioEngine> m_engine; ///< absent before the first load
    bool m_making = false; ///< one is on its way
    double m_volume = 1;

    std::uint64_t m_load = 0; ///< counts loads and unloads: what another one brought is stale
    Stage m_stage = Stage::Idle;
    std::shared_ptr<OfferedFile> m_file;
    double m_start = 0;
    std::int64_t m_entry = 0; ///< of the load, once libmpv has said so
    bool m_outputAsked = false;
    double m_duration = 0;
    bool m_seeking = false;
    bool m_seekTaken = false; ///< libmpv has begun the seek
    std::optional<double> m_nextSeek;
    Seen m_seen; ///< of this engine
};

/// On a thread of its own: for the first one the library is loaded.
void AudioOutput::Parts::makeEngine()
{
    if (std::exchange(m_making, true)) {
        return;
    }
    auto wake = [parts = weak_from_this()] {
        postToUi([parts] {
            if (const auto self = parts.lock()) {
                self->drain();
            }
        });
    };
    auto land = [parts = weak_from_this()](const std::shared_ptr<AudioEngine> &engine) {
        postToUi([parts, engine] {
            if (const auto self = parts.lock()) {
                self->applyEngine(engine);
            }
        });
    };
    auto make = [parts = weak_from_this(), wake, land, output = m_output, openFiles = m_openFiles,
                    players = m_players]() mutable {
        if (std::shared_ptr<AudioEngine> engine = AudioEngine::make(output, wake, openFiles, players);
            !parts.expired()) { // otherwise the program may be at its end
            land(engine);
        }
        players->end();
    };
    m_players->begin();
    try {
        BackgroundJobs::startDetached(make);
    } catch (const std::system_error &) { // no thread to be had
        m_players->end();
        land(nullptr);
    }
}

/// Null where libmpv does not start.
void AudioOutput::Parts::applyEngine(std::shared_ptr<AudioEngine> engine)
{
    m_making = false;
    m_engine = std::move(engine);
    m_seen = {};
    if (m_stage == Stage::Opening) {
        if (m_engine) {
            send();
        } else {
            fail(Failure::NoOutput, {});
        }
    }
    drain(); // what it reported before it was here
}

/// Hands the wanted file to the player.
void AudioOutput::Parts::send()
{
    if (!m_engine) {
        makeEngine();
        return;
    }
    const QByteArray address = m_engine->offer(m_file);
    set("volume", playerVolume(m_volume));
    set("start", m_start > 0 ? number(m_start) : "none"); // a start at 0 would be a seek
    command(Request::Load, {"loadfile", address.constData(), "replace"});
    set("pause", "no"); // after the load, otherwise a paused file could be heard again
    after(engineTimeout, &Parts::judgePlayer);
}

void AudioOutput::Parts::command(Request request, std::initializer_list<const char *> words)
{
    std::array<const char *, 5> list {};
    std::copy(words.begin(), words.end(), list.begin());
    m_engine->library().commandAsync(m_engine->handle(), userdata(request), list.data());
}

void AudioOutput::Parts::set(const char *property, const QByteArray &value)
{
    const char *bytes = value.constData();
    m_engine->library().setPropertyAsync(
        m_engine->handle(), userdata(Request::Other), property, MPV_FORMAT_STRING, &bytes);
}

void AudioOutput::Parts::ask(Request request, const char *property, mpv_format format)
{
    m_engine->library().getPropertyAsync(m_engine->handle(), userdata(request), property, format);
}

/// Unless another load or unload has come by then.
void AudioOutput::Parts::after(std::chrono::milliseconds timeout, void (Parts::*judge)())
{
    QTimer::singleShot(timeout, [parts = weak_from_this(), load = m_load, judge] {
        if (const auto self = parts.lock()) {
            self->drain(); // this thread may be the one that was late
            if (self->m_load == load) {
                ((*self).*judge)();
            }
        }
    });
}

/// A player that does not let go of its last file in time hangs on a disk; it is replaced.
void AudioOutput::Parts::judgePlayer()
{
    const bool begun = m_entry != 0 && m_seen.started >= m_entry;
    if (m_engine && m_stage == Stage::Opening && !begun) {
        m_engine.reset();
        send();
    } else if (m_stage == Stage::Idle && !m_openFiles->none()) {
        m_engine.reset();
    }
}

/// A disk may never answer, nor may a sound server.
void AudioOutput::Parts::judgeOpening()
{
    if (m_stage == Stage::Opening && !m_outputAsked) {
        const bool loaded = m_entry != 0 && m_seen.started == m_entry && m_seen.loaded;
        m_engine.reset();
        fail(loaded ? Failure::NoOutput : Failure::NotThere, {});
    }
}

void AudioOutput::Parts::drain()
{
    const auto self = shared_from_this(); // a listener may destroy the output
    while (m_engine) {
        const mpv_event &event = *m_engine->library().waitEvent(m_engine->handle(), 0);
        if (event.event_id == MPV_EVENT_NONE) {
            return;
        }
        note(event);
        evaluate();
    }
}

void AudioOutput::Parts::note(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        m_seen.started = static_cast<mpv_event_start_file *>(event.data)->playlist_entry_id;
        m_seen.loaded = false;
        m_seen.played = false;
        m_seen.running = false;
        break;
    case MPV_EVENT_FILE_LOADED:
        m_seen.loaded = true;
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        m_seen.played = true;
        m_seen.running = true;
        break;
    case MPV_EVENT_END_FILE:
        m_seen.end = *static_cast<mpv_event_end_file *>(event.data);
        m_seen.ended = m_seen.end.playlist_entry_id;
        break;
    case MPV_EVENT_COMMAND_REPLY:
    case MPV_EVENT_GET_PROPERTY_REPLY:
        onReply(event);
        break;
    case MPV_EVENT_SHUTDOWN:
        m_engine.reset();
        if (m_stage != Stage::Idle) {
            fail(Failure::NoOutput, {});
        }
        break;
    default:
        break;
    }
}

void AudioOutput::Parts::onReply(const mpv_event &event)
{
    if (event.reply_userdata / requestKinds != m_load) {
        return;
    }
    const bool good = event.error >= 0;
    const auto *property = static_cast<mpv_event_property *>(event.data);
    const auto value = [good, property] {
        return good && property->format == MPV_FORMAT_DOUBLE ? *static_cast<double *>(property->data) : 0.0;
    };
    switch (Request(event.reply_userdata % requestKinds)) {
    case Request::Load: {
        const mpv_node &result = static_cast<mpv_event_command *>(event.data)->result;
        for (int i = 0; good && result.format == MPV_FORMAT_NODE_MAP && i < result.u.list->num; ++i) {
            if (std::strcmp(result.u.list->keys[i], "playlist_entry_id") == 0) {
                m_entry = result.u.list->values[i].u.int64;
            }
        }
        if (m_entry == 0) {
            fail(Failure::NoOutput, {});
        }
        break;
    }
    case Request::Duration:
        m_duration = value();
        break;
    case Request::Output: // without one the end follows, and says why
        if (good) {
            onSound();
        }
        break;
    case Request::Position:
        if (good && m_stage == Stage::Running && !m_seeking) {
            m_listener.moved(value());
        }
        break;
    case Request::Seek:
        m_seekTaken = good;
        if (!good) {
            onSeekDone();
        }
        break;
    case Request::Other:
        break;
    }
}

/// Draws the conclusions for the load that counts. Its entry may become known after the entry's first events.
void AudioOutput::Parts::evaluate()
{
    if (m_stage == Stage::Idle || m_entry == 0) {
        return;
    }
    if (m_seen.ended == m_entry) {
        evaluateEnd();
    } else if (m_seen.started == m_entry && m_seen.running) {
        if (!m_outputAsked) {
            m_outputAsked = true;
            m_seen.running = false;
            ask(Request::Duration, "duration", MPV_FORMAT_DOUBLE);
            ask(Request::Output, "current-ao", MPV_FORMAT_STRING);
        } else if (m_seekTaken) {
            onSeekDone();
        }
    }
}

void AudioOutput::Parts::evaluateEnd()
{
    const std::uint64_t load = m_load;
    const int diskError = m_file->error;
    const int error = m_seen.end.reason == MPV_END_FILE_REASON_ERROR ? m_seen.end.error : 0;
    const QString diskReason
        = diskError ? QString::fromStdString(std::generic_category().message(diskError)) : QString();
    if (m_file->missing) {
        fail(Failure::NotThere, diskReason);
    } else if (error == MPV_ERROR_AO_INIT_FAILED) {
        fail(Failure::NoOutput, {});
    } else if (m_seen.played && !error && !diskError) {
        onSound(); // this thread may have been away for longer than a short file lasts
        if (m_load == load) {
            m_stage = Stage::Idle;
            m_listener.ended();
        }
    } else if (!m_seen.loaded) {
        fail(Failure::Refused, diskError ? diskReason : reasonOf(error));
    } else {
        const bool known = error && error != MPV_ERROR_NOTHING_TO_PLAY; // that one: no piece of it could be decoded
        fail(Failure::Decoding, diskError || !known ? diskReason : reasonOf(error));
    }
}

void AudioOutput::Parts::fail(Failure failure, const QString &reason)
{
    m_stage = Stage::Idle;
    m_listener.failed(failure, reason);
}

void AudioOutput::Parts::onSound()
{
    if (m_stage == Stage::Opening) {
        m_stage = Stage::Running;
        m_listener.started(std::isfinite(m_duration) ? std::max(0.0, m_duration) : 0);
    }
}

void AudioOutput::Parts::onSeekDone()
{
    m_seeking = false;
    m_seekTaken = false;
    m_seen.running = false;
    if (const std::optional<double> next = std::exchange(m_nextSeek, std::nullopt)) {
        const QByteArray target = number(*next);
        m_seeking = true;
        command(Request::Seek, {"seek", target.constData(), "absolute+exact"});
    }
    // The place is not asked for: a paused player gives it too low by what its output holds.
}

AudioOutput::AudioOutput(Listener listener, QByteArray output, std::chrono::milliseconds timeout)
    : m_parts(std::make_shared<Parts>())
{
    m_parts->m_listener = std::move(listener);
    m_parts->m_output = std::move(output);
    m_parts->m_timeout = timeout;
}

AudioOutput::~AudioOutput()
{
    const std::shared_ptr<PendingEnds> players = m_parts->m_players;
    ++m_parts->m_load;
    m_parts->m_stage = Parts::Stage::Idle;
    m_parts->m_engine.reset();
    m_parts.reset();
    (void)players->waitForNone(endTimeout);
}

void AudioOutput::prepare()
{
    if (!m_parts->m_engine) {
        m_parts->makeEngine();
    }
}

void AudioOutput::load(const std::filesystem::path &file, double startSeconds)
{
    Parts &parts = *m_parts;
    ++parts.m_load;
    parts.m_stage = Parts::Stage::Opening;
    parts.m_file = std::make_shared<OfferedFile>(file);
    parts.m_start = startSeconds;
    parts.m_entry = 0;
    parts.m_outputAsked = false;
    parts.m_duration = 0;
    parts.m_seeking = false;
    parts.m_seekTaken = false;
    parts.m_nextSeek.reset();
    parts.send();
    parts.after(parts.m_timeout, &Parts::judgeOpening);
}

void AudioOutput::setPaused(bool paused)
{
    if (m_parts->m_stage == Parts::Stage::Running) {
        m_parts->set("pause", paused ? "yes" : "no");
    }
}

void AudioOutput::seek(double seconds)
{
    if (m_parts->m_stage != Parts::Stage::Running) {
        return;
    }
    m_parts->m_nextSeek = seconds;
    if (!m_parts->m_seeking) {
        m_parts->onSeekDone();
    }
}

void AudioOutput::askPosition()
{
    if (m_parts->m_stage == Parts::Stage::Running && !m_parts->m_seeking) {
        m_parts->ask(Request::Position, "time-pos", MPV_FORMAT_DOUBLE);
    }
}

void AudioOutput::setVolume(double volume)
{
    m_parts->m_volume = volume;
    if (m_parts->m_engine) {
        m_parts->set("volume", playerVolume(volume));
    }
}

void AudioOutput::unload()
{
    Parts &parts = *m_parts;
    ++parts.m_load;
    parts.m_stage = Parts::Stage::Idle;
    if (parts.m_engine) {
        parts.m_engine->withdraw();
        parts.command(Request::Other, {"stop"});
        parts.after(engineTimeout, &Parts::judgePlayer);
    }
}

std::function<void()> AudioOutput::release()
{
    unload();
    return [openFiles = m_parts->m_openFiles] { (void)openFiles->waitForNone(releaseTimeout); };
}
