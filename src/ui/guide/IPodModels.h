// All models of iPods for QML, in their order. UI thread.
#pragma once

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

class IPodModels : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Each has "profileId", "name", "support" and "supported": whether there is firmware for it.
    Q_PROPERTY(QVariantList all READ all CONSTANT)

public:
    using QObject::QObject;

    [[nodiscard]] QVariantList all() const;
};
