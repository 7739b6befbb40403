// The region in which the carousel's cards stand. It moves them: after its index on a spring, by steps of the wheel and
// of drags. Its children of the type FlowPicture are the cards, as many as can be seen at once; each shows one place
// after the other. UI thread.
#pragma once

#include "ui/flow/FlowGeometry.h"
#include "ui/flow/FlowPictures.h"
#include "ui/flow/FlowSpring.h"

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class FlowPicture;

class FlowStage : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(FlowPictures *pictures READ pictures WRITE setPictures NOTIFY picturesChanged)
    Q_PROPERTY(int count READ count WRITE setCount NOTIFY countChanged)
    /// The place that stands in the middle, or is on its way there.
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY indexChanged)
    /// Nothing moves: what is chosen stands there at once.
    Q_PROPERTY(bool reduceMotion READ reduceMotion WRITE setReduceMotion NOTIFY reduceMotionChanged)
    Q_PROPERTY(bool moving READ moving NOTIFY movingChanged)
    /// The side of a cover in logical pixels.
    Q_PROPERTY(double coverSide READ coverSide NOTIFY coverSideChanged)
    /// How many cards there have to be.
    Q_PROPERTY(int cards READ cards CONSTANT)

public:
    explicit FlowStage(QQuickItem *parent = nullptr);

    [[nodiscard]] FlowPictures *pictures() const { return m_pictures; }
    void setPictures(FlowPictures *pictures);
    [[nodiscard]] int count() const { return m_count; }
    void setCount(int count);
    [[nodiscard]] int index() const { return m_index; }
    void setIndex(int index);
    [[nodiscard]] bool reduceMotion() const { return m_reduceMotion; }
    void setReduceMotion(bool reduce);
    [[nodiscard]] bool moving() const { return !m_spring.isAtRest(); }
    [[nodiscard]] double coverSide() const { return m_coverSide; }
    [[nodiscard]] static int cards() { return 2 * (FlowGeometry::reach + 1) + 1; }

    /// Other items are in the places: the one at `index` stands in the middle at once. Where that was the index before,
    /// what moves goes on.
    Q_INVOKABLE void renew(int index);
    /// So much time has passed, in seconds.
    Q_INVOKABLE void advance(double seconds);
    /// The steps that a drag of so many logical pixels to the right is worth.
    [[nodiscard]] Q_INVOKABLE static int stepsOfDrag(double distance);

Q_SIGNALS:
    void picturesChanged();
    void countChanged();
    void indexChanged();
    void reduceMotionChanged();
    void movingChanged();
    void coverSideChanged();
    /// The user has turned the wheel so many places on.
    void stepped(int steps);

protected:
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    void measure();
    void arrange();
    void putInOrder();
    void showPictures();
    void tellOfTheMiddle();
    void onArrived(int place);
    void retarget(bool still);

    QPointer<FlowPictures> m_pictures;
    std::vector<FlowPicture *> m_cards;
    FlowSpring m_spring;
    int m_count = 0;
    int m_index = 0;
    double m_coverSide = 0;
    int m_wheel = 0; ///< eighths of a degree that have not made a step yet
    bool m_reduceMotion = false;
};
