// One card of the carousel for QML, standing as it is told to. It shows a place of the stage that it lies on.
#pragma once

#include "ui/flow/FlowGeometry.h"

#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// Turns a card as it stands, whatever the eye of Qt's own rotation.
class FlowTurn : public QQuickTransform {
public:
    using QQuickTransform::QQuickTransform;

    void stand(const FlowGeometry::Pose &pose, double side);
    void applyTo(QMatrix4x4 *matrix) const override;

private:
    QMatrix4x4 m_projection;
};

class FlowPicture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Which of the carousel's items it shows.
    Q_PROPERTY(int place READ place NOTIFY placeChanged)

public:
    explicit FlowPicture(QQuickItem *parent = nullptr);

    [[nodiscard]] int place() const { return m_place; }
    void setPlace(int place);
    [[nodiscard]] const QImage &image() const { return m_image; }
    void setImage(const QImage &image);
    void stand(const FlowGeometry::Pose &pose);

Q_SIGNALS:
    void placeChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    FlowTurn m_turn;
    QImage m_image;
    int m_place = -1;
    bool m_isFresh = false; ///< the image is another than the one that is drawn
};
