// What a screen reader gets of a window: a screen, a message bus and a registry of the test's own, and the tree and the
// events as that bus carries them.
//
// Made before the application object, since Qt looks for all three when that starts; connect() comes after it. Throws
// where one of them cannot be started.
#pragma once

#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>

#include <functional>
#include <vector>

/// One object of the tree, with what lies below it.
struct AccessibleNode {
    QString role; ///< AT-SPI's name of it: "push button"
    QString name;
    quint64 states = 0;
    std::vector<AccessibleNode> children;

    // AtspiStateType of at-spi2-core
    enum State : std::uint8_t { Checked = 4, Enabled = 8, Focused = 12, Selected = 23, Showing = 25 };
    [[nodiscard]] bool is(State state) const { return (states >> state) & 1U; }
};

class ScreenReader : public QObject {
    Q_OBJECT

public:
    ScreenReader()
    {
        m_bus.start();
        qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(m_bus.address()));
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        qputenv("QT_QPA_PLATFORM", "xcb"); // Qt's offscreen platform has no bridge to the bus
        qputenv("QT_QUICK_BACKEND", "software");
        dieWithThisProcess(m_screen);
        m_screen.start(
            u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1600x1000x24"_s, u"-nolisten"_s, u"tcp"_s});
        if (!m_screen.waitForReadyRead(30'000)) {
            throw std::runtime_error("no Xvfb: " + m_screen.readAllStandardError().toStdString());
        }
        qputenv("DISPLAY", ':' + m_screen.readAllStandardOutput().trimmed());
        dieWithThisProcess(m_launcher, SIGTERM); // it then ends the bus that it has started
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_RUNTIME_DIR"_s, QString::fromStdString((m_folder / "").string()));
        m_launcher.setProcessEnvironment(environment); // the user's own bus has its place there
        m_launcher.start(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
        if (!m_launcher.waitForStarted()) {
            throw std::runtime_error("no at-spi-bus-launcher");
        }
    }
    ~ScreenReader() override
    {
        QDBusConnection::disconnectFromBus(u"reader"_s);
        for (QProcess *process : {&m_launcher, &m_screen}) {
            process->terminate();
            process->waitForFinished();
        }
    }
    ScreenReader(const ScreenReader &) = delete;
    ScreenReader &operator=(const ScreenReader &) = delete;

    /// Asks the registry to be told of the keyboard's way. False while there is no registry yet.
    [[nodiscard]] bool connect()
    {
        const QDBusReply<QString> address = QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s));
        if (!address.isValid() || address.value().isEmpty()) {
            return false;
        }
        QDBusConnection::disconnectFromBus(u"reader"_s); // one that failed would be given again
        m_connection = QDBusConnection::connectToBus(address, u"reader"_s);
        m_connection.connect(
            {}, {}, u"org.a11y.atspi.Event.Object"_s, u"StateChanged"_s, this, SLOT(stateChanged(QDBusMessage)));
        return ask(registry, u"/org/a11y/atspi/registry"_s, registry, u"RegisterEvent"_s,
                   {u"object:state-changed:focused"_s})
                   .type()
            == QDBusMessage::ReplyMessage;
    }

    /// The windows of all programs on the bus: of this one.
    [[nodiscard]] std::vector<AccessibleNode> windows() const
    {
        std::vector<AccessibleNode> result;
        for (const Place &program : children({registry, root})) {
            for (const Place &window : children(program)) {
                result.push_back(read(window));
            }
        }
        return result;
    }

    /// What has been reported to have got the focus since the last call: "list item: Album, Artist".
    [[nodiscard]] QStringList takeFocused()
    {
        QStringList result;
        for (const Place &place : std::exchange(m_focused, {})) {
            const AccessibleNode node = read(place, false);
            result.append(node.role + u": "_s + node.name);
        }
        return result;
    }

private:
    using Place = std::pair<QString, QString>; ///< name on the bus, path

    static inline const QString registry = u"org.a11y.atspi.Registry"_s;
    static inline const QString root = u"/org/a11y/atspi/accessible/root"_s;
    static inline const QString accessible = u"org.a11y.atspi.Accessible"_s;

    /// The program that answers lives in this thread: its events go on meanwhile.
    [[nodiscard]] QDBusMessage ask(const QString &service, const QString &path, const QString &interface,
        const QString &method, const QVariantList &arguments = {}) const
    {
        QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
        call.setArguments(arguments);
        return m_connection.call(call, QDBus::BlockWithGui, 20'000);
    }
    [[nodiscard]] QVariant askAccessible(const Place &of, const QString &method) const
    {
        const QDBusMessage reply = ask(of.first, of.second, accessible, method);
        // an error's only argument is its text
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
    }
    [[nodiscard]] QString property(const Place &of, const QString &name) const
    {
        const QDBusMessage reply
            = ask(of.first, of.second, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {accessible, name});
        return reply.arguments().isEmpty() ? QString()
                                           : reply.arguments().front().value<QDBusVariant>().variant().toString();
    }
    [[nodiscard]] std::vector<Place> children(const Place &of) const
    {
        std::vector<Place> result;
        const auto list = askAccessible(of, u"GetChildren"_s).value<QDBusArgument>();
        if (list.currentType() == QDBusArgument::ArrayType) {
            for (list.beginArray(); !list.atEnd();) {
                QString service;
                QDBusObjectPath path;
                list.beginStructure();
                list >> service >> path;
                list.endStructure();
                result.emplace_back(service, path.path());
            }
        }
        return result;
    }
    [[nodiscard]] AccessibleNode read(const Place &place, bool whole = true) const
    {
        AccessibleNode node {.role = askAccessible(place, u"GetRoleName"_s).toString(),
            .name = property(place, u"Name"_s),
            .states = 0,
            .children = {}};
        QList<uint> halves;
        const QVariant states = askAccessible(place, u"GetState"_s);
        if (states.isValid()) { // it may have gone meanwhile
            states.value<QDBusArgument>() >> halves;
        }
        for (qsizetype i = 0; i < halves.size(); ++i) {
            node.states |= quint64(halves[i]) << (32 * i);
        }
        for (const Place &child : whole ? children(place) : std::vector<Place>()) {
            node.children.push_back(read(child));
        }
        return node;
    }

    Q_SLOT void stateChanged(const QDBusMessage &event)
    {
        if (event.arguments().value(0) == u"focused"_s && event.arguments().value(1) == 1) {
            m_focused.append({event.service(), event.path()});
        }
    }

    QList<Place> m_focused;
    TemporaryFolder m_folder;
    PrivateBus m_bus;
    QProcess m_screen;
    QProcess m_launcher;
    QDBusConnection m_connection {QString()};
};
