#include "ui/theme/DesktopScheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFont>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace {

using Groups = QMap<QString, QVariantMap>;

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");

constexpr uint preferDark = 1;
constexpr double usualDpi = 96;

} // namespace

DesktopScheme::DesktopScheme(QObject *parent)
    : QObject(parent)
{
    readTextScale();
    if (QScreen *screen = QGuiApplication::primaryScreen()) {
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &DesktopScheme::readTextScale);
    }
    readPortal();
}

void DesktopScheme::setDark(bool dark)
{
    if (m_dark != dark) {
        m_dark = dark;
        Q_EMIT darkChanged();
    }
}

void DesktopScheme::setReducedMotion(bool reduced)
{
    if (m_reducedMotion != reduced) {
        m_reducedMotion = reduced;
        Q_EMIT reducedMotionChanged();
    }
}

void DesktopScheme::setTextScale(double scale)
{
    constexpr double smallest = 0.75;
    constexpr double largest = 2;
    const double sensible = std::clamp(scale, smallest, largest);
    if (m_textScale != sensible) {
        m_textScale = sensible;
        Q_EMIT textScaleChanged();
    }
}

QString DesktopScheme::fontFamily() const
{
    return QGuiApplication::font().family();
}

void DesktopScheme::readTextScale()
{
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        setTextScale(screen->logicalDotsPerInch() / usualDpi);
    }
}

void DesktopScheme::readPortal()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    qRegisterMetaType<QDBusVariant>(); // before the first signal that carries one, or it is silently not connected
    bus.connect(portalService, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
        SLOT(portalChanged(QString, QString, QDBusVariant)));
    qDBusRegisterMetaType<Groups>();
    QDBusMessage request
        = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, QStringLiteral("ReadAll"));
    request << QStringList {appearanceGroup, gnomeGroup, kdeGroup};
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<Groups> reply = *watcher;
        if (reply.isError()) {
            return;
        }
        const Groups groups = reply.value();
        for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
            for (auto value = group->cbegin(); value != group->cend(); ++value) {
                apply(group.key(), value.key(), value.value());
            }
        }
    });
}

void DesktopScheme::portalChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    apply(group, key, value.variant());
}

void DesktopScheme::apply(const QString &group, const QString &key, const QVariant &value)
{
    if (group == appearanceGroup && key == QLatin1String("color-scheme")) {
        setDark(value.toUInt() == preferDark);
    } else if (group == appearanceGroup && key == QLatin1String("reduced-motion")) {
        setReducedMotion(value.toUInt() == 1);
    } else if (group == gnomeGroup && key == QLatin1String("enable-animations")) {
        setReducedMotion(!value.toBool());
    } else if (group == kdeGroup && key == QLatin1String("AnimationDurationFactor")) {
        setReducedMotion(value.toDouble() == 0);
    }
}
