#include "ui/playback/MediaControls.h"

#include "ui/playback/MediaAdaptors.h"

#include <QDBusMessage>
#include <QStringList>

namespace {

const QString service = QStringLiteral("org.mpris.MediaPlayer2.marlune");
const QString object = QStringLiteral("/org/mpris/MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");

QVariantMap metadataOf(const Playback &playback)
{
    if (!playback.current()) {
        return {};
    }
    const Track &track = *playback.current();
    QVariantMap result {{QStringLiteral("mpris:trackid"), QVariant::fromValue(MediaValues::objectPathOf(track))},
        {QStringLiteral("xesam:title"), track.title}, {QStringLiteral("xesam:artist"), QStringList {track.artist}},
        {QStringLiteral("xesam:album"), track.album}};
    if (playback.duration() > 0) {
        result[QStringLiteral("mpris:length")] = MediaValues::microseconds(playback.duration());
    }
    return result;
}

} // namespace

MediaControls::MediaControls(Playback &playback, QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_playback(playback)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected()) {
        return;
    }
    new MediaRootAdaptor(this);
    new MediaPlayerAdaptor(this);
    m_bus.registerObject(object, this, QDBusConnection::ExportAdaptors);
    m_change.follow(m_playback, &Playback::currentChanged, &Playback::playingChanged, &Playback::positionChanged,
        &Playback::durationChanged, &Playback::volumeChanged);
    publish();
}

MediaControls::~MediaControls()
{
    if (m_bus.isConnected()) {
        setNamed(false);
        m_bus.unregisterObject(object);
    }
}

QVariantMap MediaControls::properties() const
{
    const bool loaded = m_playback.current().has_value();
    const char *status = m_playback.playing() ? "Playing" : loaded ? "Paused" : "Stopped";
    return {{QStringLiteral("PlaybackStatus"), QString::fromLatin1(status)},
        {QStringLiteral("Metadata"), metadataOf(m_playback)}, {QStringLiteral("Volume"), m_playback.volume()},
        {QStringLiteral("CanGoNext"), m_playback.hasNext()},
        {QStringLiteral("CanGoPrevious"), m_playback.hasPrevious()}, {QStringLiteral("CanPlay"), loaded},
        {QStringLiteral("CanPause"), loaded}, {QStringLiteral("CanSeek"), m_playback.duration() > 0}};
}

void MediaControls::publish()
{
    const QVariantMap now = properties();
    QVariantMap changed;
    for (auto property = now.begin(); property != now.end(); ++property) {
        if (m_told.value(property.key()) != property.value()) {
            changed.insert(property.key(), property.value());
        }
    }
    m_told = now;
    if (!changed.isEmpty()) {
        // org.freedesktop.DBus.Properties: PropertiesChanged(interface, changed, invalidated)
        QDBusMessage signal = QDBusMessage::createSignal(
            object, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
        signal << playerInterface << changed << QStringList();
        m_bus.send(signal);
    }
    setNamed(m_playback.current().has_value());
}

/// Takes or gives up the name under which the desktop finds players. The answer is not waited for: where another one
/// has the name, that one is steered.
void MediaControls::setNamed(bool named)
{
    if (m_named == named) {
        return;
    }
    m_named = named;
    QDBusMessage request = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        named ? QStringLiteral("RequestName") : QStringLiteral("ReleaseName"));
    request << service;
    if (named) {
        constexpr uint doNotQueue = 4;
        request << doNotQueue;
    }
    m_bus.send(request);
}
