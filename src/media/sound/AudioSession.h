// What goes on behind an AudioOutput: the player, the file it is asked for, and what libmpv has said of both.
//
// The inside of AudioOutput; UI thread, save what AudioEngine runs elsewhere. Commands to libmpv are in
// AudioSession.cpp, conclusions from its events in AudioEvents.cpp.
#pragma once

#include "media/sound/AudioEngine.h"
#include "media/sound/AudioOutput.h"
#include "media/sound/Mpv.h"

#include <initializer_list>
#include <optional>

/// What a reply answers; travels with the number of the load in libmpv's "userdata".
enum class PlayerRequest : std::uint8_t { Other, Load, Duration, Output, Position, Seek };
inline constexpr std::uint64_t playerRequestKinds = 8;

/// What libmpv has said of its playlist's entries so far.
struct PlayerEvents {
    std::int64_t started = 0; ///< the entry begun last
    bool loaded = false; ///< and has sound, as its head says
    bool played = false; ///< and was heard, or soon will be
    bool running = false; ///< and plays: now, or again after a seek
    std::int64_t ended = 0; ///< the entry ended last
    mpv_event_end_file end {};
};

struct AudioSession : std::enable_shared_from_this<AudioSession> {
    enum class Stage : std::uint8_t { Idle, Opening, Running };

    void makeEngine();
    void applyEngine(std::shared_ptr<AudioEngine> engine);
    void send();
    void command(PlayerRequest request, std::initializer_list<const char *> words);
    void set(const char *property, const QByteArray &value);
    void ask(PlayerRequest request, const char *property, mpv_format format);
    void after(std::chrono::milliseconds timeout, void (AudioSession::*judge)());
    /// A player that keeps its file open for too long is given up.
    void awaitRelease();
    void judgePlayer();
    void judgeOpening();
    void drain();
    void onEvent(const mpv_event &event);
    void onReply(const mpv_event &event);
    void evaluate();
    void evaluateEnd();
    void onSound();
    void onSeekDone();
    void fail(AudioOutput::Failure failure, const QString &reason);
    [[nodiscard]] std::uint64_t userdata(PlayerRequest request) const
    {
        return m_load * playerRequestKinds + std::uint64_t(request);
    }

    AudioOutput::Listener m_listener;
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
    PlayerEvents m_seen; ///< of this engine
};

/// As libmpv reads it.
[[nodiscard]] QByteArray playerNumber(double value);
/// libmpv's own scale is the amplitude's cube root in percent.
[[nodiscard]] QByteArray playerVolume(double volume);
