#include "ui/flow/CoverFlowPresenter.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/tasks/Background.h"

#include <QPointer>

#include <algorithm>
#include <utility>

CoverFlowPresenter::CoverFlowPresenter(MarluneModel &model, const std::shared_ptr<CoverStore> &covers, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_detail(model, covers, true)
{
    connect(&m_model, &MarluneModel::showCoverFlowChanged, this, [this] {
        follow();
        Q_EMIT shownChanged();
    });
    connect(&m_model, &MarluneModel::coverFlowWanted, this, &CoverFlowPresenter::frontWanted);
    // Covers may be changed in the same list of tracks, and nothing here keeps them from that.
    connect(&m_model, &MarluneModel::artworkChanged, this, [this] { m_source.reset(); });
    m_change.follow(m_model, &MarluneModel::tracksChanged, &MarluneModel::artworkChanged, &MarluneModel::deviceChanged);
    for (const auto change : {&MarluneModel::busyChanged, &MarluneModel::tracksChanged, &MarluneModel::deviceChanged}) {
        connect(&m_model, change, this, &CoverFlowPresenter::loadingChanged);
    }
    connect(&m_model, &MarluneModel::progressChanged, this, &CoverFlowPresenter::progressChanged);
    follow();
}

CoverFlowPresenter::~CoverFlowPresenter() = default;

void CoverFlowPresenter::follow()
{
    if (shown() && !m_model.device()) {
        dismiss(); // comes back here
    } else if (shown()) {
        rebuild();
    } else if (std::exchange(m_isAtWork, false)) {
        ++m_build;
        m_source.reset();
        m_loading = false;
        m_detail.dismiss();
        setItems(std::make_shared<const Items>());
        m_remembered.clear();
        m_index = 0;
        Q_EMIT loadingChanged();
    }
}

void CoverFlowPresenter::rebuild()
{
    std::shared_ptr<const std::vector<Track>> tracks = m_model.sharedTracks(true);
    m_isAtWork = true;
    if (tracks != m_source.lock()) {
        m_source = tracks;
        build(std::move(tracks));
    }
}

void CoverFlowPresenter::reorder()
{
    if (shown()) {
        m_source.reset();
        rebuild();
    }
}

QCoro::Task<> CoverFlowPresenter::build(std::shared_ptr<const std::vector<Track>> tracks)
{
    const QPointer<CoverFlowPresenter> self(this);
    const int number = ++m_build;
    m_loading = true;
    Q_EMIT loadingChanged();
    auto work = [tracks = std::move(tracks)] { return std::make_shared<const Items>(FlowAlbum::prepare(*tracks)); };
    std::shared_ptr<const Items> items = co_await background(work);
    if (!self || number != m_build) {
        BackgroundJobs::discard(std::move(items));
        co_return;
    }
    m_loading = false;
    setItems(std::move(items));
    Q_EMIT loadingChanged();
}

void CoverFlowPresenter::setItems(std::shared_ptr<const Items> items)
{
    if (const FlowAlbum *middle = current()) {
        m_remembered = middle->album.id();
    }
    std::vector<QByteArray> covers;
    covers.reserve(items->size());
    for (const FlowAlbum &item : *items) {
        covers.push_back(item.artwork);
    }
    const auto kept = std::find_if(
        items->begin(), items->end(), [this](const FlowAlbum &item) { return item.album.id() == m_remembered; });
    if (kept != items->end()) {
        m_index = int(kept - items->begin());
    } else if (!items->empty()) {
        m_index = std::min(m_index, int(items->size()) - 1);
    }
    BackgroundJobs::discard(std::exchange(m_items, std::move(items)));
    m_pictures.setCovers(covers);
    Q_EMIT itemsChanged();
    Q_EMIT indexChanged();
    Q_EMIT currentChanged();
}

const FlowAlbum *CoverFlowPresenter::current() const
{
    return m_index < count() ? &(*m_items)[std::size_t(m_index)] : nullptr;
}

QString CoverFlowPresenter::countText() const
{
    return AppLocalizer::text(QString::number(count()) + QStringLiteral(" albumów"));
}

QString CoverFlowPresenter::albumTitle() const
{
    const FlowAlbum *item = current();
    return item ? Wording::shownName(item->album.title) : QString();
}

QString CoverFlowPresenter::artist() const
{
    const FlowAlbum *item = current();
    return item ? Wording::shownName(Wording::artistText(item->album.artist)) : QString();
}

QString CoverFlowPresenter::facts() const
{
    const FlowAlbum *item = current();
    if (!item) {
        return {};
    }
    const QString place = QString::number(m_index + 1) + QStringLiteral(" / ") + QString::number(count());
    const QString tracks = QString::number(item->album.tracks.size()) + QStringLiteral(" utworów");
    QString text = place + QStringLiteral(" · ") + AppLocalizer::text(tracks);
    if (item->discCount >= 2) {
        text += QStringLiteral(" · ") + QString::number(item->discCount) + QStringLiteral(" CD");
    }
    return text;
}

void CoverFlowPresenter::select(int place)
{
    const int wanted = std::clamp(place, 0, std::max(0, count() - 1));
    if (wanted != m_index && count() > 0) {
        m_index = wanted;
        Q_EMIT indexChanged();
        Q_EMIT currentChanged();
    }
}

QString CoverFlowPresenter::nameAt(int place) const
{
    if (place < 0 || place >= count()) {
        return {};
    }
    const Album &album = (*m_items)[std::size_t(place)].album;
    return Wording::shownName(album.title) + QStringLiteral(", ")
        + Wording::shownName(Wording::artistText(album.artist));
}

void CoverFlowPresenter::openDetail()
{
    if (const FlowAlbum *item = current()) {
        m_detail.open(item->album);
    }
}

void CoverFlowPresenter::play()
{
    if (const FlowAlbum *item = current(); item && !item->album.tracks.empty()) {
        m_model.playback().play(item->album.tracks.front(), item->album.tracks);
    }
}
