// The two interfaces of MPRIS 2.2 (freedesktop.org's remote control of players), as D-Bus sees MediaControls. Names of
// methods, parameters and properties are MPRIS's; times are microseconds. UI thread.
#pragma once

#include "ui/playback/MediaControls.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QStringList>

#include <cmath>

namespace MediaValues {

inline constexpr double microsecondsPerSecond = 1e6;

inline qlonglong microseconds(double seconds)
{
    return std::llround(seconds * microsecondsPerSecond);
}

inline QDBusObjectPath objectPathOf(const Track &track)
{
    return QDBusObjectPath(QStringLiteral("/org/marlune/track/") + track.id.toString(QUuid::Id128));
}

} // namespace MediaValues

/// The program as a whole.
class MediaRootAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes)
    Q_PROPERTY(bool CanRaise READ yes)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ none)
    Q_PROPERTY(QStringList SupportedMimeTypes READ none)

public:
    explicit MediaRootAdaptor(MediaControls *controls)
        : QDBusAbstractAdaptor(controls)
        , m_controls(controls)
    {
    }

    [[nodiscard]] bool yes() const { return true; }
    [[nodiscard]] bool no() const { return false; }
    [[nodiscard]] QString identity() const { return QStringLiteral("Marlune"); }
    [[nodiscard]] QString desktopEntry() const { return QStringLiteral("marlune"); }
    [[nodiscard]] QStringList none() const { return {}; }

public Q_SLOTS:
    void Raise() { Q_EMIT m_controls->raiseWanted(); }
    void Quit() { Q_EMIT m_controls->quitWanted(); }

private:
    MediaControls *m_controls;
};

/// What is played.
class MediaPlayerAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate)
    Q_PROPERTY(double MaximumRate READ rate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ canGoNext)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ isLoaded)
    Q_PROPERTY(bool CanPause READ isLoaded)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ yes)

public:
    explicit MediaPlayerAdaptor(MediaControls *controls)
        : QDBusAbstractAdaptor(controls)
        , m_controls(controls)
        , m_playback(controls->playback())
    {
        connect(&m_playback, &Playback::seeked, this, [this] { Q_EMIT Seeked(position()); });
    }

    [[nodiscard]] QString playbackStatus() const { return told("PlaybackStatus").toString(); }
    [[nodiscard]] double rate() const { return 1; }
    void setRate(double rate)
    {
        if (rate == 0) { // MPRIS's other way to pause
            Pause();
        }
    }
    [[nodiscard]] QVariantMap metadata() const { return told("Metadata").toMap(); }
    [[nodiscard]] double volume() const { return m_playback.volume(); }
    void setVolume(double volume) { m_playback.setVolume(volume); }
    [[nodiscard]] qlonglong position() const { return MediaValues::microseconds(m_playback.position()); }
    [[nodiscard]] bool canGoNext() const { return m_playback.hasNext(); }
    [[nodiscard]] bool canGoPrevious() const { return m_playback.hasPrevious(); }
    [[nodiscard]] bool isLoaded() const { return m_playback.current().has_value(); }
    [[nodiscard]] bool canSeek() const { return m_playback.duration() > 0; }
    [[nodiscard]] bool yes() const { return true; }

public Q_SLOTS:
    void Next() { m_playback.next(); }
    void Previous() { m_playback.previous(); }
    void Stop() { m_playback.stop(); }
    void PlayPause() { m_playback.toggle(); }
    void Play()
    {
        if (!m_playback.playing()) {
            m_playback.toggle();
        }
    }
    void Pause()
    {
        if (m_playback.playing()) {
            m_playback.toggle();
        }
    }
    /// By so many microseconds; past the end it is the next track.
    void Seek(qlonglong Offset)
    {
        const double target = m_playback.position() + double(Offset) / MediaValues::microsecondsPerSecond;
        if (canSeek() && target > m_playback.duration()) {
            m_playback.next();
        } else {
            m_playback.seek(target);
        }
    }
    /// Nothing happens if that track is not loaded any more or has no such place.
    void SetPosition(const QDBusObjectPath &TrackId, qlonglong Position)
    {
        const double target = double(Position) / MediaValues::microsecondsPerSecond;
        if (isLoaded() && TrackId == MediaValues::objectPathOf(*m_playback.current()) && target >= 0
            && target <= m_playback.duration()) {
            m_playback.seek(target);
        }
    }
    void OpenUri(const QString & /*Uri*/) { } // no scheme is supported

Q_SIGNALS:
    void Seeked(qlonglong Position); // NOLINT(readability-inconsistent-declaration-parameter-name): moc's own

private:
    [[nodiscard]] QVariant told(const char *name) const { return m_controls->properties()[QLatin1String(name)]; }

    MediaControls *m_controls;
    Playback &m_playback;
};
