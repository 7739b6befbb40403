#include "ui/flow/FlowPicture.h"

#include "ui/flow/FlowCard.h"

#include <QQuickWindow>
#include <QSGImageNode>

void FlowTurn::stand(const FlowGeometry::Pose &pose, double side)
{
    m_projection = FlowGeometry::projection(pose, side);
    update();
}

void FlowTurn::applyTo(QMatrix4x4 *matrix) const
{
    *matrix *= m_projection;
}

FlowPicture::FlowPicture(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    m_turn.prependToItem(this);
}

void FlowPicture::setPlace(int place)
{
    if (m_place != place) {
        m_place = place;
        Q_EMIT placeChanged();
    }
}

void FlowPicture::setImage(const QImage &image)
{
    if (m_image.cacheKey() != image.cacheKey()) {
        m_image = image;
        m_isFresh = true;
        update();
    }
}

void FlowPicture::stand(const FlowGeometry::Pose &pose)
{
    m_turn.stand(pose, width());
    setOpacity(pose.opacity);
    setZ(pose.height);
    setVisible(pose.opacity > 0 && m_place >= 0);
}

QSGNode *FlowPicture::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    auto *picture = static_cast<QSGImageNode *>(node);
    if (m_image.isNull()) {
        delete picture;
        return nullptr;
    }
    if (!picture) {
        picture = window()->createImageNode();
        picture->setOwnsTexture(true);
        picture->setFiltering(QSGTexture::Linear);
        picture->setMipmapFiltering(QSGTexture::Linear);
        m_isFresh = true;
    }
    if (m_isFresh) {
        constexpr QQuickWindow::CreateTextureOptions options(QQuickWindow::TextureHasAlphaChannel);
        picture->setTexture(window()->createTextureFromImage(m_image, options | QQuickWindow::TextureHasMipmaps));
        m_isFresh = false;
    }
    const double margin = FlowCard::margin * width() / (m_image.width() - 2 * FlowCard::margin);
    picture->setRect(boundingRect().adjusted(-margin, -margin, margin, margin));
    return picture;
}
