#include "media/sound/AudioSession.h"

#include "platform/tasks/Background.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <cmath>
#include <system_error>

namespace {

constexpr std::chrono::milliseconds engineTimeout {2'000}; ///< for letting go of a file

} // namespace

QByteArray playerNumber(double value)
{
    return QByteArray::number(value, 'f', 6);
}

QByteArray playerVolume(double volume)
{
    return playerNumber(100 * std::cbrt(std::clamp(volume, 0.0, 1.0)));
}

/// On a thread of its own: for the first one the library is loaded.
void AudioSession::makeEngine()
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
void AudioSession::applyEngine(std::shared_ptr<AudioEngine> engine)
{
    m_making = false;
    m_engine = std::move(engine);
    m_seen = {};
    if (m_stage == Stage::Opening) {
        if (m_engine) {
            send();
        } else {
            fail(AudioOutput::Failure::NoOutput, {});
        }
    }
    drain(); // what it reported before it was here
}

/// Hands the wanted file to the player.
void AudioSession::send()
{
    if (!m_engine) {
        makeEngine();
        return;
    }
    const QByteArray address = m_engine->offer(m_file);
    set("volume", playerVolume(m_volume));
    set("start", m_start > 0 ? playerNumber(m_start) : "none"); // a start at 0 would be a seek
    command(PlayerRequest::Load, {"loadfile", address.constData(), "replace"});
    set("pause", "no"); // after the load, otherwise a paused file could be heard again
    awaitRelease();
}

void AudioSession::command(PlayerRequest request, std::initializer_list<const char *> words)
{
    std::array<const char *, 5> list {};
    std::copy(words.begin(), words.end(), list.begin());
    m_engine->library().commandAsync(m_engine->handle(), userdata(request), list.data());
}

void AudioSession::set(const char *property, const QByteArray &value)
{
    const char *bytes = value.constData();
    m_engine->library().setPropertyAsync(
        m_engine->handle(), userdata(PlayerRequest::Other), property, MPV_FORMAT_STRING, &bytes);
}

void AudioSession::ask(PlayerRequest request, const char *property, mpv_format format)
{
    m_engine->library().getPropertyAsync(m_engine->handle(), userdata(request), property, format);
}

/// Unless another load or unload has come by then.
void AudioSession::after(std::chrono::milliseconds timeout, void (AudioSession::*judge)())
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

void AudioSession::awaitRelease()
{
    after(engineTimeout, &AudioSession::judgePlayer);
}

/// A player that does not let go of its last file in time hangs on a disk; it is replaced.
void AudioSession::judgePlayer()
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
void AudioSession::judgeOpening()
{
    if (m_stage == Stage::Opening && !m_outputAsked) {
        const bool loaded = m_entry != 0 && m_seen.started == m_entry && m_seen.loaded;
        m_engine.reset();
        fail(loaded ? AudioOutput::Failure::NoOutput : AudioOutput::Failure::NotThere, {});
    }
}

void AudioSession::drain()
{
    const auto self = shared_from_this(); // a listener may destroy the output
    while (m_engine) {
        const mpv_event &event = *m_engine->library().waitEvent(m_engine->handle(), 0);
        if (event.event_id == MPV_EVENT_NONE) {
            return;
        }
        onEvent(event);
        evaluate();
    }
}
