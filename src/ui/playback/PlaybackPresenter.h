// What pages show of listening on the computer. UI thread.
#pragma once

#include "playback/Playback.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

class PlaybackPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(bool shown READ shown NOTIFY currentChanged)
    /// "Odsłuch na Macu · Title · Artist"
    Q_PROPERTY(QString heading READ heading NOTIFY currentChanged)
    /// The id of the track that is heard, empty where none is.
    Q_PROPERTY(QString playingTrack READ playingTrack NOTIFY playingChanged)
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged)
    Q_PROPERTY(bool hasNext READ hasNext NOTIFY currentChanged)
    Q_PROPERTY(bool hasPrevious READ hasPrevious NOTIFY positionChanged)
    Q_PROPERTY(double position READ position NOTIFY positionChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(QString positionText READ positionText NOTIFY positionChanged)
    Q_PROPERTY(QString durationText READ durationText NOTIFY durationChanged)
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)

public:
    explicit PlaybackPresenter(Playback &playback, QObject *parent = nullptr);

    [[nodiscard]] bool shown() const { return m_playback.current().has_value(); }
    [[nodiscard]] QString heading() const;
    [[nodiscard]] QString playingTrack() const;
    [[nodiscard]] bool playing() const { return m_playback.playing(); }
    [[nodiscard]] bool hasNext() const { return m_playback.hasNext(); }
    [[nodiscard]] bool hasPrevious() const { return m_playback.hasPrevious(); }
    [[nodiscard]] double position() const { return m_playback.position(); }
    /// As the file's tags have it until the player knows better: what shows it keeps its state at a change of track.
    [[nodiscard]] double duration() const;
    [[nodiscard]] QString positionText() const;
    [[nodiscard]] QString durationText() const;
    [[nodiscard]] double volume() const { return m_playback.volume(); }
    void setVolume(double volume) { m_playback.setVolume(volume); }
    [[nodiscard]] QString error() const;

    Q_INVOKABLE void toggle() { m_playback.toggle(); }
    Q_INVOKABLE void stop() { m_playback.stop(); }
    Q_INVOKABLE void seek(double seconds) { m_playback.seek(seconds); }
    Q_INVOKABLE void next() { m_playback.next(); }
    Q_INVOKABLE void previous() { m_playback.previous(); }

Q_SIGNALS:
    void currentChanged();
    void playingChanged();
    void positionChanged();
    void durationChanged();
    void volumeChanged();
    void errorChanged();

private:
    Playback &m_playback;
};
