#include "ui/themes/ThemePicture.h"

#include "ui/LocalPath.h"
#include "ui/pictures/ContinuousCorners.h"

#include "media/pictures/Images.h"
#include "platform/files/Files.h"
#include "platform/tasks/Background.h"
#include "platform/web/Http.h"

#include <QCache>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int maxSide = 1024; ///< pixels; a larger picture is reduced to it when it is decoded
constexpr int httpOk = 200;

/// What the network brought last, so that a picture scrolled away and back is asked for once. UI thread.
QCache<QUrl, QImage> &fetchedPictures()
{
    constexpr qsizetype cacheBytes = 32'000'000;
    static QCache<QUrl, QImage> cache(cacheBytes);
    return cache;
}

constexpr int maxReadings = 2; ///< of the four threads of the pool
int readings = 0; ///< under way; UI thread

/// The items whose file is to be read, in the order of asking. UI thread.
std::vector<ThemePicture *> &waiting()
{
    static std::vector<ThemePicture *> items;
    return items;
}

} // namespace

struct ThemePicture::Loading {
    std::shared_ptr<std::atomic<bool>> cancelled = std::make_shared<std::atomic<bool>>(false);
    QObject exchange; ///< with a server: goes on for as long as this lives

    ~Loading() { *cancelled = true; }
};

ThemePicture::ThemePicture(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

ThemePicture::~ThemePicture()
{
    std::erase(waiting(), this);
}

void ThemePicture::setUrl(const QUrl &url)
{
    if (m_url == url) {
        return;
    }
    // The same file read again stays on show until that is done.
    const bool isShown = m_state == Ready && url.isLocalFile() && url.matches(m_url, QUrl::RemoveFragment);
    m_url = url;
    m_loading.reset();
    std::erase(waiting(), this);
    if (!isShown) {
        m_image = QImage();
        update();
    }
    if (url.isEmpty()) {
        setState(Absent);
    } else if (const QImage *fetched = fetchedPictures().object(url)) {
        show(*fetched);
    } else if (url.isLocalFile()) {
        const std::optional<std::filesystem::path> file = localPath(url);
        setState(!file ? Unavailable : (isShown ? Ready : Reading));
        if (file) {
            m_loading = std::make_shared<Loading>();
            readInTurn();
        }
    } else {
        m_loading = std::make_shared<Loading>();
        setState(Fetching);
        fetch(url);
    }
    Q_EMIT urlChanged();
}

void ThemePicture::readInTurn()
{
    waiting().push_back(this);
    readNext();
}

void ThemePicture::readNext()
{
    std::vector<ThemePicture *> &items = waiting();
    while (readings < maxReadings) {
        const auto next
            = std::find_if(items.begin(), items.end(), [](const ThemePicture *item) { return !item->m_isReading; });
        if (next == items.end()) {
            return;
        }
        ThemePicture *const item = *next;
        items.erase(next);
        item->read();
    }
}

QCoro::Task<> ThemePicture::read()
{
    ++readings;
    m_isReading = true;
    const QPointer<ThemePicture> self(this);
    const std::filesystem::path file = localPath(m_url).value_or(std::filesystem::path());
    const std::shared_ptr<std::atomic<bool>> cancelled = m_loading->cancelled;
    auto work = [file, cancelled]() -> QImage {
        const std::optional<QByteArray> bytes = *cancelled ? std::nullopt : Files::readBelow(file, maxBytes + 1);
        return bytes && !*cancelled ? decodeImage(*bytes, maxSide) : QImage();
    };
    const auto picture = co_await attempt(work, JobPriority::Utility);
    --readings;
    if (self) {
        m_isReading = false;
    }
    if (self && !*cancelled) {
        show(picture.value.value_or(QImage()));
    }
    readNext();
}

QCoro::Task<> ThemePicture::fetch(QUrl address)
{
    const QPointer<ThemePicture> self(this);
    const std::shared_ptr<std::atomic<bool>> cancelled = m_loading->cancelled;
    QImage picture;
    try {
        Http::Request request {.url = address, .maxBodyBytes = maxBytes, .redirects = Http::Redirects::AnyHost};
        const Http::Response response = co_await Http::get(request, m_loading->exchange);
        if (!self || *cancelled) {
            co_return;
        }
        if (response.status == httpOk && response.body) {
            auto work = [bytes = *response.body] { return decodeImage(bytes, maxSide); };
            picture = co_await background(work);
        }
    } catch (const std::exception &) {
        picture = QImage(); // no answer: the page says so
    }
    if (self && !*cancelled) {
        if (!picture.isNull()) {
            fetchedPictures().insert(address, new QImage(picture), picture.sizeInBytes());
        }
        show(picture);
    }
}

void ThemePicture::show(const QImage &image)
{
    m_image = image;
    update();
    setState(image.isNull() ? Unavailable : Ready);
}

void ThemePicture::setState(State state)
{
    if (m_state != state) {
        m_state = state;
        Q_EMIT stateChanged();
    }
}

void ThemePicture::setGround(const QColor &colour)
{
    if (m_ground != colour) {
        m_ground = colour;
        update();
        Q_EMIT groundChanged();
    }
}

void ThemePicture::setRounding(double radius)
{
    if (!qFuzzyCompare(1 + m_rounding, 1 + radius)) {
        m_rounding = radius;
        update();
        Q_EMIT roundingChanged();
    }
}

void ThemePicture::paint(QPainter *painter)
{
    const QPainterPath shape = continuousCorners(boundingRect(), m_rounding);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->fillPath(shape, m_ground);
    if (m_image.isNull()) {
        return;
    }
    const QSizeF shown = QSizeF(m_image.size()).scaled(size(), Qt::KeepAspectRatio);
    const QPointF corner((width() - shown.width()) / 2, (height() - shown.height()) / 2);
    QPainterPath place;
    place.addRect(QRectF(corner, shown));
    QBrush picture(m_image);
    picture.setTransform(QTransform::fromTranslate(corner.x(), corner.y())
            .scale(shown.width() / m_image.width(), shown.height() / m_image.height()));
    painter->fillPath(shape.intersected(place), picture);
}
