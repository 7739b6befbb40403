#include "playback/Playback.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr std::chrono::milliseconds positionInterval {400};
constexpr std::chrono::milliseconds firstPositionInterval {10};

QString describe(AudioOutput::Failure failure, const QString &reason)
{
    switch (failure) {
    case AudioOutput::Failure::NotThere:
        return QStringLiteral("Plik nie jest dostępny. Sprawdź połączenie z iPodem.");
    case AudioOutput::Failure::Refused:
        return QStringLiteral("Nie można odtworzyć pliku na Macu: ") + reason;
    case AudioOutput::Failure::Decoding:
        return QStringLiteral("Błąd dekodowania audio: ")
            + (reason.isEmpty() ? QStringLiteral("Nieznany błąd") : reason);
    case AudioOutput::Failure::NoOutput:
        break;
    }
    return QStringLiteral("macOS nie może odtworzyć tego pliku lub wyjście audio jest niedostępne.");
}

/// Whether `path` lies below `root`, by their names alone: the disk may not answer any more.
bool namesBelow(const std::filesystem::path &path, const std::filesystem::path &root)
{
    const auto [left, right] = std::mismatch(root.begin(), root.end(), path.begin(), path.end());
    return left == root.end();
}

/// From 0 to `most`; 0 for what is no number.
double within(double value, double most)
{
    return value > 0 ? std::min(value, most) : 0;
}

} // namespace

Playback::Playback(const QByteArray &output, QObject *parent)
    : QObject(parent)
    , m_output(
          {.started = [this](double duration) { onStart(duration); },
              .moved = [this](double seconds) { onPosition(seconds); },
              .ended = [this] { onEnd(); },
              .failed = [this](AudioOutput::Failure failure, const QString &reason) { onFailure(failure, reason); }},
          output)
{
    m_output.setVolume(m_volume);
    connect(&m_timer, &QTimer::timeout, this, [this] { m_output.askPosition(); });
}

void Playback::setVolume(double volume)
{
    volume = within(volume, 1);
    if (m_volume != volume) {
        m_volume = volume;
        m_output.setVolume(volume);
        Q_EMIT volumeChanged();
    }
}

void Playback::play(const Track &track, std::vector<Track> queue)
{
    if (m_current && m_current->id == track.id && m_audio != Audio::Absent) {
        toggle();
        return;
    }
    m_queue = std::move(queue);
    if (m_queue.empty()) {
        m_queue.push_back(track);
    }
    const auto place
        = std::find_if(m_queue.begin(), m_queue.end(), [&track](const Track &other) { return other.id == track.id; });
    m_index = place == m_queue.end() ? 0 : place - m_queue.begin();
    start(track);
}

void Playback::start(Track track)
{
    const bool released = isReleased(track);
    if (released) {
        close();
    } else {
        open(track.url, 0);
    }
    setPlaying(false);
    setError(released ? std::optional(describe(AudioOutput::Failure::NotThere, {})) : std::nullopt);
    setCurrent(std::move(track));
    setPosition(0);
    setDuration(0);
}

void Playback::open(const std::filesystem::path &file, double fromSeconds)
{
    m_timer.stop();
    m_audio = Audio::Opening;
    m_output.load(file, fromSeconds);
}

void Playback::toggle()
{
    switch (m_audio) {
    case Audio::Absent:
        if (m_current) {
            start(*m_current);
        }
        break;
    case Audio::Opening:
        break;
    case Audio::Ended:
        setPosition(isEnd(m_position) ? 0 : m_position);
        open(m_current->url, m_position);
        break;
    case Audio::Open:
        setPaused(m_playing);
        break;
    }
}

void Playback::setPaused(bool paused)
{
    m_output.setPaused(paused);
    m_output.askPosition();
    if (paused) {
        m_timer.stop();
    } else {
        m_timer.start(positionInterval);
    }
    setPlaying(!paused);
}

void Playback::stop()
{
    m_output.unload();
    clear();
}

void Playback::close()
{
    m_timer.stop();
    m_audio = Audio::Absent;
    m_output.unload();
}

void Playback::clear()
{
    m_timer.stop();
    m_audio = Audio::Absent;
    m_queue.clear();
    m_index = 0;
    setPlaying(false);
    setError(std::nullopt);
    setCurrent(std::nullopt);
    setPosition(0);
    setDuration(0);
}

void Playback::seek(double seconds)
{
    if (m_audio != Audio::Open && m_audio != Audio::Ended) {
        return;
    }
    setPosition(within(seconds, m_duration > 0 ? m_duration : std::numeric_limits<double>::max()));
    if (m_audio == Audio::Open && !m_playing && isEnd(m_position)) {
        m_audio = Audio::Ended; // without the player, which would close the file there
    } else {
        m_output.seek(m_position);
    }
    Q_EMIT seeked();
}

void Playback::next()
{
    if (hasNext()) {
        ++m_index;
        start(m_queue[std::size_t(m_index)]);
    }
}

void Playback::previous()
{
    if (m_position > restartAfterSeconds) {
        seek(0);
    } else if (m_index > 0) {
        --m_index;
        start(m_queue[std::size_t(m_index)]);
    }
}

bool Playback::isReleased(const Track &track) const
{
    return m_released && namesBelow(track.url, *m_released);
}

std::function<void()> Playback::release(const std::filesystem::path &root)
{
    m_released = root;
    if (m_current && !namesBelow(m_current->url, root)) {
        return [] { };
    }
    // Without a track too: the one stopped last may not be closed yet.
    std::function<void()> closed = m_output.release();
    clear();
    return closed;
}

void Playback::onStart(double duration)
{
    m_audio = Audio::Open;
    setDuration(duration > 0 ? duration : m_current->info.duration); // not every format tells the player
    setPlaying(true);
    m_timer.start(firstPositionInterval);
}

void Playback::onPosition(double seconds)
{
    if (m_audio != Audio::Open) { // moved to its end since it was asked
        return;
    }
    if (m_timer.isActive() && seconds > 0) {
        m_timer.start(positionInterval);
    }
    setPosition(m_duration > 0 ? within(seconds, m_duration) : seconds);
}

void Playback::onEnd()
{
    const bool wasPlaying = m_playing; // otherwise it was paused in its last moment
    m_timer.stop();
    m_audio = Audio::Ended;
    setPlaying(false);
    setPosition(m_duration);
    if (wasPlaying) {
        next();
    }
}

void Playback::onFailure(AudioOutput::Failure failure, const QString &reason)
{
    m_timer.stop();
    m_audio = Audio::Absent;
    setPlaying(false);
    setPosition(0);
    setError(describe(failure, reason));
}

void Playback::setCurrent(std::optional<Track> track)
{
    m_current = std::move(track);
    Q_EMIT currentChanged();
}

void Playback::setPlaying(bool playing)
{
    if (m_playing != playing) {
        m_playing = playing;
        Q_EMIT playingChanged();
    }
}

void Playback::setPosition(double position)
{
    if (m_position != position) {
        m_position = position;
        Q_EMIT positionChanged();
    }
}

void Playback::setDuration(double duration)
{
    if (m_duration != duration) {
        m_duration = duration;
        Q_EMIT durationChanged();
    }
}

void Playback::setError(std::optional<QString> error)
{
    if (m_error != error) {
        m_error = std::move(error);
        Q_EMIT errorChanged();
    }
}
