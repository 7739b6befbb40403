// Plays a track on the computer, with the list in which it was chosen as a queue.
//
// UI thread; no call waits for a disk or a sound server. A failure ends up in `error`, keeps the track and never goes
// on to the next one; nothing throws. There is one player at a time: whatever was loaded before is closed.
//
// A file is opened in the background. Meanwhile `current` is the track, `playing` false, `position` and `duration` 0,
// and pressing play again changes nothing; then sound runs, or `error` says why not. While sound runs `position` is
// renewed every 0.4 s, the first time as soon as it is above 0.
#pragma once

#include "library/Track.h"

#include "media/sound/AudioOutput.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <vector>

class Playback : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged)
    Q_PROPERTY(double position READ position NOTIFY positionChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(QString error READ errorText NOTIFY errorChanged)
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)

public:
    /// `output` as AudioOutput takes it.
    explicit Playback(const QByteArray &output = {}, QObject *parent = nullptr);

    [[nodiscard]] const std::optional<Track> &current() const { return m_current; }
    [[nodiscard]] bool playing() const { return m_playing; }
    [[nodiscard]] double position() const { return m_position; } ///< seconds
    [[nodiscard]] double duration() const { return m_duration; } ///< seconds, 0 if unknown
    [[nodiscard]] const std::optional<QString> &error() const { return m_error; }
    [[nodiscard]] double volume() const { return m_volume; } ///< 0 to 1
    void setVolume(double volume);
    [[nodiscard]] bool hasNext() const { return m_index + 1 < std::int64_t(m_queue.size()); }
    /// Whether previous() leads anywhere: to another track, or back to this one's start.
    [[nodiscard]] bool hasPrevious() const { return m_index > 0 || m_position > restartAfterSeconds; }

    /// For those who see a play() coming; see AudioOutput.
    void prepare() { m_output.prepare(); }
    /// Plays `track`, with `queue` as the list for next and previous. Pauses or resumes if it is the loaded one.
    void play(const Track &track, std::vector<Track> queue);
    Q_INVOKABLE void toggle();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void seek(double seconds);
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    /// Stops if the loaded track lies below `root`, and opens none from there until readmit(): such a track is missing.
    /// Returns a function that waits a few seconds at most until its file, or that of the track stopped last, is
    /// closed, for a background job that is to unmount the disk.
    [[nodiscard]] std::function<void()> release(const std::filesystem::path &root);
    void readmit() { m_released.reset(); }

Q_SIGNALS:
    void currentChanged();
    void playingChanged();
    void positionChanged();
    void durationChanged();
    void errorChanged();
    void volumeChanged();
    /// The user, not time, has moved the position.
    void seeked();

private:
    static constexpr double restartAfterSeconds = 3;

    /// What is behind `current`.
    enum class Audio : std::uint8_t {
        Absent, ///< nothing is loaded, or it has failed
        Opening,
        Open,
        Ended, ///< played, or moved while paused, to its end; to play it again is to open it again
    };

    /// False for any place of a track of unknown length.
    [[nodiscard]] bool isEnd(double position) const { return m_duration > 0 && position >= m_duration; }
    /// Whether the track lies on a disk that is on its way out.
    [[nodiscard]] bool isReleased(const Track &track) const;
    [[nodiscard]] QString errorText() const { return m_error.value_or(QString()); }
    void start(Track track);
    void open(const std::filesystem::path &file, double fromSeconds);
    void setPaused(bool paused);
    void close();
    void clear();
    void onStart(double duration);
    void onEnd();
    void onFailure(AudioOutput::Failure failure, const QString &reason);
    void onPosition(double seconds);
    void setCurrent(std::optional<Track> track);
    void setPlaying(bool playing);
    void setPosition(double position);
    void setDuration(double duration);
    void setError(std::optional<QString> error);

    std::optional<Track> m_current;
    bool m_playing = false;
    double m_position = 0;
    double m_duration = 0;
    std::optional<QString> m_error;
    double m_volume = 0.6;
    Audio m_audio = Audio::Absent;
    QTimer m_timer;
    std::vector<Track> m_queue;
    std::int64_t m_index = 0;
    std::optional<std::filesystem::path> m_released;
    AudioOutput m_output; // last: it reports nothing once the rest is gone
};
