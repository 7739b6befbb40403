// The player as the desktop sees it, over a private bus.
#include "ui/playback/MediaControls.h"
#include "support/PrivateBus.h"
#include "support/WaveFile.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QSignalSpy>
#include <QTest>

#include <clocale>

namespace {

const QString service = u"org.mpris.MediaPlayer2.marlune"_s;
const QString object = u"/org/mpris/MediaPlayer2"_s;

} // namespace

class MediaControlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        std::setlocale(LC_NUMERIC, "C");
        m_bus.start();
    }

    void withoutABusNothingHappens()
    {
        Playback playback("null");
        const MediaControls controls(playback, QDBusConnection(u"none"_s));
        playback.play(track("a"), {});
        QTRY_VERIFY(playback.playing());
    }

    void theDesktopSeesAndSteersThePlayer()
    {
        Playback playback("null");
        MediaControls controls(playback, connection(u"player"_s));
        QDBusConnection desktop = connection(u"desktop"_s);
        QVERIFY(!isThere(desktop)); // nothing is loaded
        QVERIFY(desktop.connect({}, object, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
            SLOT(keep(QString, QVariantMap, QStringList))));
        QVERIFY(desktop.connect(
            {}, object, u"org.mpris.MediaPlayer2.Player"_s, u"Seeked"_s, this, SLOT(keepPlace(qlonglong))));
        const std::vector<Track> list {track("Pierwszy"), track("Drugi")};
        playback.play(list[0], list);
        QTRY_VERIFY(isThere(desktop));
        QTRY_COMPARE(m_properties[u"PlaybackStatus"_s].toString(), u"Playing"_s);
        QTRY_COMPARE(metadata()[u"xesam:title"_s].toString(), u"Pierwszy"_s);
        QTRY_VERIFY(metadata()[u"mpris:length"_s].toLongLong() > 3'000'000);
        QCOMPARE(metadata()[u"xesam:artist"_s].toStringList(), QStringList {u"Artysta"_s});
        QCOMPARE(m_properties[u"CanGoNext"_s], true);

        call(desktop, "Pause");
        QTRY_COMPARE(m_properties[u"PlaybackStatus"_s].toString(), u"Paused"_s);
        call(desktop, "Pause"); // which is not toggled
        const QVariant id = metadata()[u"mpris:trackid"_s];
        const QVariant other = QVariant::fromValue(QDBusObjectPath("/other"));
        call(desktop, "SetPosition", {other, 1'000'000LL});
        call(desktop, "SetPosition", {id, 99'000'000LL});
        call(desktop, "SetPosition", {id, 2'000'000LL});
        QTRY_COMPARE(m_places, QList<qlonglong> {2'000'000});
        call(desktop, "Seek", {-500'000LL});
        QTRY_COMPARE(playback.position(), 1.5);
        QVERIFY(!playback.playing());
        call(desktop, "Seek", {60'000'000LL});
        QTRY_VERIFY(playback.current() == list[1]);
        QTRY_COMPARE(m_properties[u"CanGoNext"_s], false);
        call(desktop, "Set", {u"org.mpris.MediaPlayer2.Player"_s, u"Volume"_s, QVariant::fromValue(QDBusVariant(0.25))},
            "org.freedesktop.DBus.Properties");
        QTRY_COMPARE(playback.volume(), 0.25);

        QSignalSpy quits(&controls, &MediaControls::quitWanted);
        QSignalSpy raises(&controls, &MediaControls::raiseWanted);
        call(desktop, "Raise", {}, "org.mpris.MediaPlayer2");
        call(desktop, "Quit", {}, "org.mpris.MediaPlayer2");
        QTRY_VERIFY(quits.size() == 1 && raises.size() == 1);
        call(desktop, "Stop");
        QTRY_VERIFY(!isThere(desktop));
        QVERIFY(!playback.current());
    }

public Q_SLOTS:
    void keep(const QString & /*interface*/, const QVariantMap &changed, const QStringList & /*invalidated*/)
    {
        m_properties.insert(changed);
    }
    void keepPlace(qlonglong place) { m_places.append(place); }

private:
    [[nodiscard]] Track track(const char *title) const
    {
        Track track;
        track.id = QUuid::createUuid();
        track.title = QString::fromLatin1(title);
        track.artist = u"Artysta"_s;
        track.url = m_folder.write(title, wave(4));
        return track;
    }
    [[nodiscard]] QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(QString::fromStdString(m_bus.address()), name);
    }
    static bool isThere(const QDBusConnection &desktop) { return desktop.interface()->isServiceRegistered(service); }
    static void call(QDBusConnection &desktop, const char *method, const QVariantList &arguments = {},
        const char *interface = "org.mpris.MediaPlayer2.Player")
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, object, QString::fromLatin1(interface), QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusPendingCall pending = desktop.asyncCall(message); // this process answers it
        QTRY_VERIFY(pending.isFinished());
        QVERIFY2(!pending.isError(), qPrintable(pending.error().message()));
    }
    [[nodiscard]] QVariantMap metadata() const { return qdbus_cast<QVariantMap>(m_properties[u"Metadata"_s]); }

    TemporaryFolder m_folder;
    PrivateBus m_bus;
    QVariantMap m_properties;
    QList<qlonglong> m_places;
};

QTEST_GUILESS_MAIN(MediaControlsTest)
#include "MediaControlsTest.moc"
