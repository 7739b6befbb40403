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

const QString service = QStringLiteral("org.mpris.MediaPlayer2.marlune");
const QString object = QStringLiteral("/org/mpris/MediaPlayer2");

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
        const MediaControls controls(playback, QDBusConnection(QStringLiteral("none")));
        playback.play(track("a"), {});
        QTRY_VERIFY(playback.playing());
    }

    void theDesktopSeesAndSteersThePlayer()
    {
        Playback playback("null");
        MediaControls controls(playback, connection(QStringLiteral("player")));
        QDBusConnection desktop = connection(QStringLiteral("desktop"));
        QVERIFY(!isThere(desktop)); // nothing is loaded
        QVERIFY(desktop.connect({}, object, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("PropertiesChanged"), this, SLOT(keep(QString, QVariantMap, QStringList))));
        QVERIFY(desktop.connect({}, object, QStringLiteral("org.mpris.MediaPlayer2.Player"), QStringLiteral("Seeked"),
            this, SLOT(keepPlace(qlonglong))));
        const std::vector<Track> list {track("Pierwszy"), track("Drugi")};
        playback.play(list[0], list);
        QTRY_VERIFY(isThere(desktop));
        QTRY_COMPARE(m_properties[QStringLiteral("PlaybackStatus")].toString(), QStringLiteral("Playing"));
        QTRY_COMPARE(metadata()[QStringLiteral("xesam:title")].toString(), QStringLiteral("Pierwszy"));
        QTRY_VERIFY(metadata()[QStringLiteral("mpris:length")].toLongLong() > 3'000'000);
        QCOMPARE(metadata()[QStringLiteral("xesam:artist")].toStringList(), QStringList {QStringLiteral("Artysta")});
        QCOMPARE(m_properties[QStringLiteral("CanGoNext")], true);

        call(desktop, "Pause");
        QTRY_COMPARE(m_properties[QStringLiteral("PlaybackStatus")].toString(), QStringLiteral("Paused"));
        call(desktop, "Pause"); // which is not toggled
        const QVariant id = metadata()[QStringLiteral("mpris:trackid")];
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
        QTRY_COMPARE(m_properties[QStringLiteral("CanGoNext")], false);
        setVolume(desktop, 0.25);
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
        track.artist = QStringLiteral("Artysta");
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
    static void setVolume(QDBusConnection &desktop, double volume)
    {
        call(desktop, "Set",
            {QStringLiteral("org.mpris.MediaPlayer2.Player"), QStringLiteral("Volume"),
                QVariant::fromValue(QDBusVariant(volume))},
            "org.freedesktop.DBus.Properties");
    }
    [[nodiscard]] QVariantMap metadata() const
    {
        return qdbus_cast<QVariantMap>(m_properties[QStringLiteral("Metadata")]);
    }

    TemporaryFolder m_folder;
    PrivateBus m_bus;
    QVariantMap m_properties;
    QList<qlonglong> m_places;
};

QTEST_GUILESS_MAIN(MediaControlsTest)
#include "MediaControlsTest.moc"
