// Lets the desktop see and steer what is listened to: media keys, the panel's player, a headset's buttons.
//
// MPRIS 2.2 (freedesktop.org's remote control of players) on the session bus, under "org.mpris.MediaPlayer2.marlune",
// as long as a track is loaded. Without a bus nothing happens. UI thread; nothing waits for the bus.
#pragma once

#include "playback/Playback.h"

#include "platform/tasks/BurstTimer.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

class MediaControls : public QObject {
    Q_OBJECT

public:
    explicit MediaControls(
        Playback &playback, QDBusConnection bus = QDBusConnection::sessionBus(), QObject *parent = nullptr);
    ~MediaControls() override;
    MediaControls(const MediaControls &) = delete;
    MediaControls &operator=(const MediaControls &) = delete;

    [[nodiscard]] Playback &playback() { return m_playback; }
    /// The player's properties under MPRIS's names, without "Position" and those that never change.
    [[nodiscard]] QVariantMap properties() const;

Q_SIGNALS:
    /// The desktop asks for the window, or for the program's end.
    void raiseWanted();
    void quitWanted();

private:
    void publish();
    void setNamed(bool named);

    Playback &m_playback;
    QDBusConnection m_bus;
    BurstTimer m_change {[this] { publish(); }};
    QVariantMap m_told;
    bool m_named = false;
};
