#include "media/sound/AudioSession.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <system_error>

namespace {

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

} // namespace

void AudioSession::onEvent(const mpv_event &event)
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
            fail(AudioOutput::Failure::NoOutput, {});
        }
        break;
    default:
        break;
    }
}

void AudioSession::onReply(const mpv_event &event)
{
    if (event.reply_userdata / playerRequestKinds != m_load) {
        return;
    }
    const bool good = event.error >= 0;
    const auto *property = static_cast<mpv_event_property *>(event.data);
    const auto value = [good, property] {
        return good && property->format == MPV_FORMAT_DOUBLE ? *static_cast<double *>(property->data) : 0.0;
    };
    switch (PlayerRequest(event.reply_userdata % playerRequestKinds)) {
    case PlayerRequest::Load: {
        const mpv_node &result = static_cast<mpv_event_command *>(event.data)->result;
        for (int i = 0; good && result.format == MPV_FORMAT_NODE_MAP && i < result.u.list->num; ++i) {
            if (std::strcmp(result.u.list->keys[i], "playlist_entry_id") == 0) {
                m_entry = result.u.list->values[i].u.int64;
            }
        }
        if (m_entry == 0) {
            fail(AudioOutput::Failure::NoOutput, {});
        }
        break;
    }
    case PlayerRequest::Duration:
        m_duration = value();
        break;
    case PlayerRequest::Output: // without one the end follows, and says why
        if (good) {
            onSound();
        }
        break;
    case PlayerRequest::Position:
        if (good && m_stage == Stage::Running && !m_seeking) {
            m_listener.moved(value());
        }
        break;
    case PlayerRequest::Seek:
        m_seekTaken = good;
        if (!good) {
            onSeekDone();
        }
        break;
    case PlayerRequest::Other:
        break;
    }
}

/// Draws the conclusions for the load that counts. Its entry may become known after the entry's first events.
void AudioSession::evaluate()
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
            ask(PlayerRequest::Duration, "duration", MPV_FORMAT_DOUBLE);
            ask(PlayerRequest::Output, "current-ao", MPV_FORMAT_STRING);
        } else if (m_seekTaken) {
            onSeekDone();
        }
    }
}

void AudioSession::evaluateEnd()
{
    const std::uint64_t load = m_load;
    const int diskError = m_file->error;
    const int error = m_seen.end.reason == MPV_END_FILE_REASON_ERROR ? m_seen.end.error : 0;
    const QString diskReason
        = diskError ? QString::fromStdString(std::generic_category().message(diskError)) : QString();
    if (m_file->missing) {
        fail(AudioOutput::Failure::NotThere, diskReason);
    } else if (error == MPV_ERROR_AO_INIT_FAILED) {
        fail(AudioOutput::Failure::NoOutput, {});
    } else if (m_seen.played && !error && !diskError) {
        onSound(); // this thread may have been away for longer than a short file lasts
        if (m_load == load) {
            m_stage = Stage::Idle;
            m_listener.ended();
        }
    } else if (!m_seen.loaded) {
        fail(AudioOutput::Failure::Refused, diskError ? diskReason : reasonOf(error));
    } else {
        const bool known = error && error != MPV_ERROR_NOTHING_TO_PLAY; // that one: no piece of it could be decoded
        fail(AudioOutput::Failure::Decoding, diskError || !known ? diskReason : reasonOf(error));
    }
}

void AudioSession::fail(AudioOutput::Failure failure, const QString &reason)
{
    m_stage = Stage::Idle;
    m_listener.failed(failure, reason);
}

void AudioSession::onSound()
{
    if (m_stage == Stage::Opening) {
        m_stage = Stage::Running;
        m_listener.started(std::isfinite(m_duration) ? std::max(0.0, m_duration) : 0);
    }
}

void AudioSession::onSeekDone()
{
    m_seeking = false;
    m_seekTaken = false;
    m_seen.running = false;
    if (const std::optional<double> next = std::exchange(m_nextSeek, std::nullopt)) {
        const QByteArray target = playerNumber(*next);
        m_seeking = true;
        command(PlayerRequest::Seek, {"seek", target.constData(), "absolute+exact"});
    }
    // The place is not asked for: a paused player gives it too low by what its output holds.
}
