#include "ui/flow/FlowStage.h"

#include "ui/flow/FlowPicture.h"

#include <QAccessible>
#include <QQuickWindow>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int notch = 120; // eighths of a degree of a usual wheel's step
constexpr double longestWay = 12; // places that are seen passing; what is further away is skipped
constexpr double longestFrame = 0.1; // seconds: after a pause it goes on where it was

} // namespace

FlowStage::FlowStage(QQuickItem *parent)
    : QQuickItem(parent)
{
}

void FlowStage::setPictures(FlowPictures *pictures)
{
    if (m_pictures != pictures) {
        if (m_pictures) {
            m_pictures->disconnect(this);
        }
        m_pictures = pictures;
        if (m_pictures) {
            connect(m_pictures, &FlowPictures::arrived, this, &FlowStage::onArrived);
        }
        measure();
        arrange();
        showPictures();
        Q_EMIT picturesChanged();
    }
}

void FlowStage::setCount(int count)
{
    if (m_count != count) {
        m_count = count;
        arrange();
        tellOfTheMiddle();
        Q_EMIT countChanged();
    }
}

void FlowStage::setIndex(int index)
{
    if (m_index != index) {
        m_index = index;
        retarget(m_reduceMotion || !isComponentComplete()); // where it begins is no motion
        Q_EMIT indexChanged();
    }
}

void FlowStage::setReduceMotion(bool reduce)
{
    if (m_reduceMotion != reduce) {
        m_reduceMotion = reduce;
        retarget(reduce);
        Q_EMIT reduceMotionChanged();
    }
}

void FlowStage::retarget(bool still)
{
    const bool wasMoving = moving();
    if (still) {
        m_spring.jumpTo(m_index);
    } else {
        m_spring.setGoal(m_index);
        const double way = m_spring.place() - m_index;
        if (std::abs(way) > longestWay) {
            m_spring.setPlace(m_index + std::copysign(longestWay, way));
        }
    }
    if (m_pictures) {
        m_pictures->lookAt(m_index);
    }
    arrange();
    if (moving() != wasMoving) {
        Q_EMIT movingChanged();
    }
    putInOrder();
    tellOfTheMiddle();
}

void FlowStage::renew(int index)
{
    if (m_index != index) {
        m_index = index;
        retarget(true);
        Q_EMIT indexChanged();
    }
    showPictures();
}

void FlowStage::showPictures()
{
    for (FlowPicture *card : m_cards) {
        card->setImage(m_pictures ? m_pictures->card(card->place()) : QImage());
    }
}

void FlowStage::advance(double seconds)
{
    if (moving()) {
        m_spring.advance(std::min(seconds, longestFrame));
        arrange();
        if (!moving()) {
            Q_EMIT movingChanged();
            putInOrder();
            tellOfTheMiddle();
        }
    }
}

/// A screen reader goes through the cards as they were stacked.
void FlowStage::putInOrder()
{
    if (moving() || m_cards.empty()) {
        return;
    }
    std::vector<FlowPicture *> cards = m_cards;
    std::ranges::sort(cards, {}, &FlowPicture::place);
    for (std::size_t card = 1; card < cards.size(); ++card) {
        cards[card]->stackAfter(cards[card - 1]);
    }
}

/// A screen reader is told that the card in the middle has the focus, which the stage holds for whichever stands there.
void FlowStage::tellOfTheMiddle()
{
    const auto middle
        = std::ranges::find_if(m_cards, [this](const FlowPicture *card) { return card->place() == m_index; });
    if (!moving() && hasActiveFocus() && middle != m_cards.end()) {
        QAccessibleEvent event(*middle, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

int FlowStage::stepsOfDrag(double distance)
{
    constexpr double shortest = 40;
    return std::abs(distance) > shortest ? (distance < 0 ? 1 : -1) : 0;
}

void FlowStage::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    measure();
    arrange();
}

void FlowStage::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemChildAddedChange) {
        if (auto *card = qobject_cast<FlowPicture *>(value.item)) {
            m_cards.push_back(card);
            arrange();
        }
    } else if (change == ItemChildRemovedChange) {
        std::erase(m_cards, static_cast<FlowPicture *>(value.item));
    } else if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged) {
        measure();
    }
}

void FlowStage::measure()
{
    const double side = FlowGeometry::coverSide(width(), height());
    if (m_pictures && side > 0) {
        m_pictures->setLargeSide(side * (window() ? window()->effectiveDevicePixelRatio() : 1));
    }
    if (m_coverSide != side) {
        m_coverSide = side;
        showPictures(); // stand-ins of another size
        Q_EMIT coverSideChanged();
    }
}

/// Each card shows the place nearest to the middle among those that are its own: every cards()-th.
void FlowStage::arrange()
{
    const int number = int(m_cards.size());
    if (number == 0) {
        return;
    }
    const int first = int(std::lround(m_spring.place())) - number / 2;
    for (int slot = 0; slot < number; ++slot) {
        FlowPicture &card = *m_cards[std::size_t(slot)];
        const int place = first + (((slot - first) % number) + number) % number;
        const bool exists = place >= 0 && place < m_count;
        if (card.place() != (exists ? place : -1)) {
            card.setPlace(exists ? place : -1);
            card.setImage(exists && m_pictures ? m_pictures->card(place) : QImage());
        }
        const double height = m_coverSide * FlowGeometry::cardHeight;
        card.setSize({m_coverSide, height});
        card.setPosition({(width() - m_coverSide) / 2, (this->height() - height) / 2});
        card.stand(FlowGeometry::pose(place - m_spring.place()));
    }
}

void FlowStage::onArrived(int place)
{
    for (FlowPicture *card : m_cards) {
        if (card->place() == place) {
            card->setImage(m_pictures->card(place));
        }
    }
}

void FlowStage::focusInEvent(QFocusEvent *event)
{
    QQuickItem::focusInEvent(event);
    tellOfTheMiddle();
}

void FlowStage::wheelEvent(QWheelEvent *event)
{
    if (event->phase() == Qt::ScrollBegin) {
        m_wheel = 0;
    }
    const QPoint turned = event->angleDelta();
    m_wheel += std::abs(turned.x()) > std::abs(turned.y()) ? turned.x() : turned.y();
    const int steps = m_wheel / notch;
    m_wheel -= steps * notch;
    if (steps != 0) {
        Q_EMIT stepped(-steps);
    }
    event->accept();
}
