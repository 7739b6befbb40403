// What the pages do with what is browsed: choices that are kept, and who hears of a change.
#include "model/Model.h"

#include <QPointer>

void MarluneModel::onTracksChanged()
{
    Q_EMIT tracksChanged();
    Q_EMIT browsingChanged();
}

void MarluneModel::reorder()
{
    sortThemes(m_content.themes);
    Q_EMIT themesChanged();
    runReorder();
}

QCoro::Task<> MarluneModel::runReorder()
{
    const QPointer<MarluneModel> self(this);
    const int order = ++m_textOrder;
    const Side shown = m_browsing.side();
    for (const Side side : {shown, shown == Side::Device ? Side::Computer : Side::Device}) {
        while (!m_browsing.isReady(side)) {
            const LibraryContents base = m_browsing.contents(side);
            auto work = [base] { return base.prepared(); };
            const LibraryContents made = co_await background(work);
            if (!self || order != m_textOrder) {
                co_return;
            }
            (void)m_browsing.land(side, base, made); // otherwise once more
        }
        if (side == m_browsing.side()) { // perhaps it is another one by now
            Q_EMIT browsingChanged();
        }
    }
}

void MarluneModel::setArtwork(const QSet<QUuid> &ids, const QByteArray &image, bool onDevice)
{
    m_browsing.setArtwork(onDevice ? Side::Device : Side::Computer, ids, image);
    Q_EMIT artworkChanged();
    if (onDevice == libraryOnDevice()) {
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setLibraryOnDevice(bool onDevice)
{
    if (m_browsing.setSide(onDevice ? Side::Device : Side::Computer)) {
        forgetDuplicates();
        Q_EMIT libraryOnDeviceChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setSearch(const QString &text)
{
    if (m_browsing.setSearch(text)) {
        Q_EMIT searchChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setFormatFilter(const QString &filter)
{
    if (m_browsing.setFormatFilter(filter)) {
        Q_EMIT formatFilterChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setHiResOnly(bool only)
{
    if (m_browsing.setHiResOnly(only)) {
        Q_EMIT hiResOnlyChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setSortMode(const QString &mode)
{
    if (m_browsing.setSortMode(mode)) {
        m_environment.settings.setText(QStringLiteral("sortMode"), mode);
        Q_EMIT sortModeChanged();
        Q_EMIT browsingChanged();
    }
}

void MarluneModel::setViewMode(const QString &mode)
{
    if (m_viewMode != mode) {
        m_viewMode = mode;
        m_environment.settings.setText(QStringLiteral("viewMode"), mode);
        Q_EMIT viewModeChanged();
    }
}

void MarluneModel::setTileSize(double size)
{
    if (m_tileSize != size) {
        m_tileSize = size;
        m_environment.settings.setNumber(QStringLiteral("tileSize"), size);
        Q_EMIT tileSizeChanged();
    }
}

void MarluneModel::setOpenAlbum(const std::optional<Album> &album)
{
    if (m_openAlbum != album) {
        m_openAlbum = album;
        Q_EMIT openAlbumChanged();
    }
}

void MarluneModel::toggle(const Album &album, std::optional<bool> onDeviceOverride)
{
    m_browsing.toggle(side(onDeviceOverride), album);
    Q_EMIT selectionChanged();
}

void MarluneModel::toggleTrack(const Track &track, std::optional<bool> onDeviceOverride)
{
    m_browsing.toggleTrack(side(onDeviceOverride), track);
    Q_EMIT selectionChanged();
}

void MarluneModel::toggleTracks(const QSet<QUuid> &ids)
{
    m_browsing.toggle(m_browsing.side(), ids);
    Q_EMIT selectionChanged();
}

void MarluneModel::enqueue(const QSet<QUuid> &ids)
{
    m_browsing.enqueue(ids);
    Q_EMIT selectionChanged();
}

void MarluneModel::clearQueue()
{
    if (!m_work.busy() && !queued().isEmpty()) {
        m_browsing.clearQueue();
        Q_EMIT selectionChanged();
    }
}

void MarluneModel::setShowCoverFlow(bool shown)
{
    if (m_showCoverFlow != shown) {
        m_showCoverFlow = shown;
        Q_EMIT showCoverFlowChanged();
    }
}

void MarluneModel::revealCoverFlow()
{
    if (!m_device || busy()) {
        return;
    }
    setLibraryOnDevice(true);
    if (m_showCoverFlow) {
        Q_EMIT coverFlowWanted();
    }
    setShowCoverFlow(true);
}
