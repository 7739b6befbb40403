// What QML needs of one drawn iPod: how large it comes out, where its screen is, and the addresses of its pictures.
//
// UI thread; draws nothing itself.
#pragma once

#include "ui/device/IPodLayout.h"

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class IPodFigure : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString profileId MEMBER m_profileId NOTIFY changed)
    Q_PROPERTY(QString finish MEMBER m_finish NOTIFY changed)
    Q_PROPERTY(double width MEMBER m_width NOTIFY changed)
    Q_PROPERTY(double maxHeight MEMBER m_maxHeight NOTIFY changed)
    Q_PROPERTY(double pixelRatio MEMBER m_pixelRatio NOTIFY changed)

    Q_PROPERTY(QString label READ label NOTIFY changed)
    Q_PROPERTY(QSizeF body READ body NOTIFY changed)
    Q_PROPERTY(bool hasScreen READ hasScreen NOTIFY changed)
    Q_PROPERTY(QRectF screen READ screen NOTIFY changed)
    Q_PROPERTY(QColor ink READ ink NOTIFY changed)
    Q_PROPERTY(int margin READ margin CONSTANT)
    Q_PROPERTY(QString litAddress READ litAddress NOTIFY changed)
    Q_PROPERTY(QString blankAddress READ blankAddress NOTIFY changed)
    Q_PROPERTY(QString glassAddress READ glassAddress NOTIFY changed)

public:
    using QObject::QObject;

    /// The model's name, and its finish.
    [[nodiscard]] QString label() const;
    [[nodiscard]] QSizeF body() const { return layout().body; }
    [[nodiscard]] bool hasScreen() const { return layout().screen.has_value(); }
    /// From the body's top left corner; empty where there is none.
    [[nodiscard]] QRectF screen() const { return layout().screen.value_or(QRectF()); }
    /// The colour of what the screen shows of itself.
    [[nodiscard]] QColor ink() const;
    /// What the body's picture has around the body.
    [[nodiscard]] int margin() const;
    /// The body with what its screen shows of itself, the same without that, and what lies over a picture there.
    [[nodiscard]] QString litAddress() const { return address("lit"); }
    [[nodiscard]] QString blankAddress() const { return address("blank"); }
    [[nodiscard]] QString glassAddress() const { return address("glass"); }

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] const IPodProfile &profile() const;
    [[nodiscard]] QString finish() const;
    [[nodiscard]] IPodLayout layout() const;
    [[nodiscard]] QString address(const char *kind) const;

    QString m_profileId;
    QString m_finish; ///< empty: the profile's own
    double m_width = 0;
    double m_maxHeight = 370;
    double m_pixelRatio = 1;
};
