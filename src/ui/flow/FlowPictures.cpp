#include "ui/flow/FlowPictures.h"

#include "ui/flow/FlowCard.h"
#include "ui/flow/FlowGeometry.h"
#include "ui/pictures/CoverProvider.h"

#include "platform/tasks/Background.h"

#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace {

constexpr int seen = FlowGeometry::reach + 1; // places to each side that can be seen while it moves
constexpr int smallAhead = 24;
constexpr int largeAhead = 12;
constexpr int largeBehind = 6;

/// The picture on an opaque ground; null if the bytes are none.
QImage decoded(const QByteArray &encoded, int side)
{
    QImage picture = CoverProvider::draw(encoded, side, 0);
    if (!picture.isNull()) {
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillRect(picture.rect(), Qt::black);
    }
    return picture;
}

} // namespace

FlowPictures::FlowPictures(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount() - 1, 1, 3)); // one is for what is shown
    m_pool.setThreadPriority(QThread::LowPriority);
}

FlowPictures::~FlowPictures()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void FlowPictures::setCovers(const std::vector<QByteArray> &covers)
{
    QHash<const char *, std::size_t> before; // equal bytes are the same shared buffer, which m_covers keeps alive
    for (std::size_t place = 0; place < m_covers.size(); ++place) {
        before.insert(m_covers[place].encoded.constData(), place);
    }
    std::vector<Cover> now;
    now.reserve(covers.size());
    m_largeBytes = 0;
    for (const QByteArray &encoded : covers) {
        const auto kept = before.constFind(encoded.constData());
        now.push_back(
            kept != before.constEnd() ? m_covers[*kept] : Cover {.encoded = encoded, .small = {}, .large = {}});
        now.back().isPicture = now.back().isPicture && !encoded.isEmpty();
        now.back().isAwaited = false;
        m_largeBytes += now.back().large.sizeInBytes();
    }
    m_covers = std::move(now);
    m_middle = std::clamp(m_middle, 0, std::max(0, int(m_covers.size()) - 1));
    pump();
}

void FlowPictures::lookAt(int place)
{
    if (place != m_middle) {
        m_direction = place > m_middle ? 1 : -1;
        m_middle = place;
        pump();
    }
}

void FlowPictures::setLargeSide(double pixels)
{
    constexpr int step = 160;
    const int side = std::clamp(int(std::ceil(pixels / step)) * step, step, largestSide);
    if (side != m_side || m_emptyCard.isNull()) {
        m_side = side;
        m_awaitedCard = FlowCard::draw(FlowCard::standIn(side, true));
        m_emptyCard = FlowCard::draw(FlowCard::standIn(side, false));
        pump();
    }
}

QImage FlowPictures::card(int place) const
{
    if (place < 0 || place >= int(m_covers.size())) {
        return {};
    }
    const Cover &cover = m_covers[std::size_t(place)];
    if (!cover.isPicture) {
        return m_emptyCard;
    }
    if (!cover.large.isNull()) {
        return cover.large;
    }
    return cover.small.isNull() ? m_awaitedCard : FlowCard::draw(cover.small);
}

bool FlowPictures::isFinal(int place) const
{
    const Cover &cover = m_covers[std::size_t(place)];
    return !cover.isPicture || cover.large.width() == m_side + 2 * FlowCard::margin;
}

bool FlowPictures::wants(int place, bool large) const
{
    if (place < 0 || place >= int(m_covers.size())) {
        return false;
    }
    const Cover &cover = m_covers[std::size_t(place)];
    return cover.isPicture && !cover.isAwaited && (large ? !isFinal(place) : cover.small.isNull());
}

FlowPictures::Order FlowPictures::next() const
{
    struct Range {
        int ahead;
        int behind;
        bool large;
    };
    const int all = int(m_covers.size());
    for (const Range &range : {Range {seen, seen, false}, Range {seen, seen, true}, Range {smallAhead, 0, false},
             Range {largeAhead, largeBehind, true}, Range {all, all, false}}) {
        for (int distance = 0; distance <= std::max(range.ahead, range.behind); ++distance) {
            const int ahead = m_middle + m_direction * distance;
            if (distance <= range.ahead && wants(ahead, range.large)) {
                return {.place = ahead, .large = range.large};
            }
            const int behind = m_middle - m_direction * distance;
            if (distance <= range.behind && wants(behind, range.large)) {
                return {.place = behind, .large = range.large};
            }
        }
    }
    return {};
}

void FlowPictures::pump()
{
    while (m_running < m_pool.maxThreadCount()) {
        const Order order = next();
        if (order.place < 0) {
            return;
        }
        decode(order);
    }
}

void FlowPictures::decode(const Order &order)
{
    Cover &cover = m_covers[std::size_t(order.place)];
    cover.isAwaited = true;
    ++m_running;
    const int side = order.large ? m_side : smallSide;
    BackgroundJobs::startOn(m_pool, [self = QPointer(this), encoded = cover.encoded, order, side] {
        QImage picture = decoded(encoded, side);
        picture = order.large ? FlowCard::draw(picture) : picture.convertToFormat(QImage::Format_RGB16);
        postToUi([self, encoded, order, picture] {
            if (self) {
                self->land(encoded, order, picture);
            }
        });
    });
}

void FlowPictures::land(const QByteArray &encoded, const Order &order, const QImage &picture)
{
    --m_running;
    // Other albums may have come meanwhile: then it is decoded again where it is wanted.
    if (order.place < int(m_covers.size())
        && m_covers[std::size_t(order.place)].encoded.constData() == encoded.constData()) {
        Cover &cover = m_covers[std::size_t(order.place)];
        cover.isAwaited = false;
        cover.isPicture = !picture.isNull();
        QImage &kept = order.large ? cover.large : cover.small;
        m_largeBytes += order.large ? picture.sizeInBytes() - kept.sizeInBytes() : 0;
        kept = picture;
        giveUpFurthest();
        Q_EMIT arrived(order.place);
    }
    pump();
}

void FlowPictures::giveUpFurthest()
{
    while (m_largeBytes > largeBudget) {
        Cover *furthest = nullptr;
        int longest = seen;
        for (int place = 0; place < int(m_covers.size()); ++place) {
            const int distance = std::abs(place - m_middle);
            if (distance > longest && !m_covers[std::size_t(place)].large.isNull()) {
                longest = distance;
                furthest = &m_covers[std::size_t(place)];
            }
        }
        if (!furthest) {
            return;
        }
        m_largeBytes -= furthest->large.sizeInBytes();
        furthest->large = {};
    }
}
