// The look that the desktop asks for, from a settings portal of the test's own on a private session bus.
#include "ui/theme/DesktopScheme.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QSignalSpy>
#include <QTest>

namespace {

using Groups = QMap<QString, QVariantMap>;

const QString object = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;

class Portal : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.interface() != settingsInterface || message.member() != QLatin1StringView("ReadAll")) {
            return false;
        }
        connection.send(message.createReply(QVariant::fromValue(groups)));
        return true;
    }

    Groups groups;
};

} // namespace

class DesktopSchemeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Groups>();
        m_bus.start();
        qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(m_bus.address()));
    }

    void followsThePortalLive()
    {
        QDBusConnection connection
            = QDBusConnection::connectToBus(QString::fromStdString(m_bus.address()), u"portal"_s);
        Portal portal;
        portal.groups[appearance][u"color-scheme"_s] = 1U;
        portal.groups[appearance][u"reduced-motion"_s] = 1U;
        QVERIFY(connection.registerVirtualObject(object, &portal));
        QVERIFY(connection.registerService(u"org.freedesktop.portal.Desktop"_s));

        DesktopScheme scheme;
        QTRY_VERIFY(scheme.dark());
        QVERIFY(scheme.reducedMotion());
        QSignalSpy changes(&scheme, &DesktopScheme::darkChanged);
        for (const uint wish : {2U, 2U, 1U}) {
            QDBusMessage signal = QDBusMessage::createSignal(object, settingsInterface, u"SettingChanged"_s);
            signal << appearance << u"color-scheme"_s << QVariant::fromValue(QDBusVariant(wish));
            QVERIFY(connection.send(signal));
            QTRY_COMPARE(scheme.dark(), wish == 1);
        }
        QCOMPARE(changes.count(), 2);
        QDBusConnection::disconnectFromBus(u"portal"_s);
    }

    void readsAValueForEachDesktop()
    {
        const QString gnome = u"org.gnome.desktop.interface"_s;
        const QString kde = u"org.kde.kdeglobals.KDE"_s;
        const std::tuple<QString, const char *, QVariant, bool, bool> rows[] = {
            {appearance, "color-scheme", 1U, true, false}, {appearance, "color-scheme", 2U, false, false},
            {appearance, "reduced-motion", 1U, false, true}, {gnome, "enable-animations", false, false, true},
            {gnome, "enable-animations", true, false, false}, {gnome, "color-scheme", u"prefer-dark"_s, false, false},
            {kde, "AnimationDurationFactor", u"0"_s, false, true},
            {kde, "AnimationDurationFactor", u"2"_s, false, false}};
        for (const auto &[group, key, value, dark, still] : rows) {
            DesktopScheme scheme;
            scheme.apply(group, QString::fromLatin1(key), value);
            QVERIFY2(scheme.dark() == dark && scheme.reducedMotion() == still, key);
        }
    }

private:
    PrivateBus m_bus;
};

QTEST_MAIN(DesktopSchemeTest)
#include "DesktopSchemeTest.moc"
