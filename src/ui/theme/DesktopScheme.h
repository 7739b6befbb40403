// How the desktop wants programs to look: dark or light, with motion or without, and how large its text is.
//
// Follows the settings portal of the session bus (org.freedesktop.portal.Settings), live. Where there is no portal the
// look is light and things move. UI thread; never waits.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

class DesktopScheme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark WRITE setDark NOTIFY darkChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale NOTIFY textScaleChanged)
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)

public:
    explicit DesktopScheme(QObject *parent = nullptr);

    [[nodiscard]] bool dark() const { return m_dark; }
    void setDark(bool dark);
    [[nodiscard]] bool reducedMotion() const { return m_reducedMotion; }
    void setReducedMotion(bool reduced);
    /// 1 where text has its usual size, 1.5 where the desktop shows it half as large again.
    [[nodiscard]] double textScale() const { return m_textScale; }
    void setTextScale(double scale);
    [[nodiscard]] QString fontFamily() const;

    /// Takes over one value of the portal; names that mean nothing here are ignored.
    void apply(const QString &group, const QString &key, const QVariant &value);

Q_SIGNALS:
    void darkChanged();
    void reducedMotionChanged();
    void textScaleChanged();

private:
    Q_SLOT void portalChanged(const QString &group, const QString &key, const QDBusVariant &value);
    void readPortal();
    void readTextScale();

    bool m_dark = false;
    bool m_reducedMotion = false;
    double m_textScale = 1;
};
