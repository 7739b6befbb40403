// Plays one audio file at a time on the computer's sound output.
//
// UI thread; each call returns at once, whatever the disk and the sound server do, and what became of it is reported
// to the listener from the event loop. Of a file that another one has replaced nothing more is reported. A file is read
// by the bytes of its name and only if it is a regular file; nothing in it makes the player open another file or the
// network. A player that a dead disk holds up is left to itself: the next file gets a new one, and what was to be
// opened is called missing after a while. LC_NUMERIC must be "C", otherwise no file can be played.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

struct AudioSession;

class AudioOutput {
public:
    enum class Failure : std::uint8_t {
        NotThere, ///< nothing exists at the path, or its disk is gone or does not answer
        Refused, ///< not readable, of no known format, or without sound
        NoOutput, ///< there is no sound output, or it takes no sound
        Decoding, ///< the sound cannot be decoded, or the disk failed on the way
    };

    /// Each may call any function of the output, and destroy it.
    struct Listener {
        std::function<void(double durationSeconds)> started; ///< sound is running; 0 for an unknown duration
        std::function<void(double seconds)> moved; ///< the answer to askPosition()
        std::function<void()> ended; ///< the last sound is out; the file is closed
        std::function<void(Failure, const QString &reason)> failed; ///< the file is closed; the reason may be empty
    };

    /// `output` is libmpv's name of a way to put out sound: "null" plays into nothing, in real time; empty takes what
    /// the desktop has. A file that has not begun to sound after `timeout` has failed. Nothing is opened before the
    /// first load() or prepare().
    explicit AudioOutput(
        Listener listener, QByteArray output = {}, std::chrono::milliseconds timeout = std::chrono::seconds(10));
    /// Waits a moment for the player's end.
    ~AudioOutput();
    AudioOutput(const AudioOutput &) = delete;
    AudioOutput &operator=(const AudioOutput &) = delete;

    /// Gets the player ready in the background, so that the first file sounds as soon as later ones (0.02 s, not 0.2
    /// s).
    void prepare();
    /// Plays the file from `startSeconds`, in place of the one before.
    void load(const std::filesystem::path &file, double startSeconds);
    void setPaused(bool paused);
    /// To a place of the file that is playing or paused; of several calls in a row the last one counts.
    void seek(double seconds);
    void askPosition();
    /// 0 to 1, the share of the sound's amplitude.
    void setVolume(double volume);
    void unload();
    /// unload(), and a function that waits, for a few seconds at most, until no file is open any more. That one blocks;
    /// any thread, also after the end of the output.
    [[nodiscard]] std::function<void()> release();

private:
    std::shared_ptr<AudioSession> m_session;
};
