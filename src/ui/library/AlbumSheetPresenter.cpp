#include "ui/library/AlbumSheetPresenter.h"

#include "ui/words/Localization.h"

#include "platform/text/ByteCount.h"

#include <numeric>

AlbumSheetPresenter::AlbumSheetPresenter(
    MarluneModel &model, std::shared_ptr<CoverStore> covers, Field field, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_covers(std::move(covers))
    , m_field(field)
{
    connect(&m_model, m_field == Field::OpenAlbum ? &MarluneModel::openAlbumChanged : &MarluneModel::coverLookupChanged,
        this, &AlbumSheetPresenter::refresh);
    m_change.follow(
        m_model, &MarluneModel::tracksChanged, &MarluneModel::artworkChanged, &MarluneModel::libraryOnDeviceChanged);
}

const std::optional<Album> &AlbumSheetPresenter::field() const
{
    return m_field == Field::OpenAlbum ? m_model.openAlbum() : m_model.coverLookup();
}

void AlbumSheetPresenter::refresh()
{
    if (field()) {
        const std::shared_ptr<const Album> now = m_model.albumOf(field()->id());
        m_available = now != nullptr;
        if (now || m_album.id() != field()->id()) {
            m_album = now ? *now : *field();
        }
    }
    Q_EMIT changed();
}

QString AlbumSheetPresenter::facts() const
{
    const double seconds = std::accumulate(m_album.tracks.begin(), m_album.tracks.end(), 0.0,
        [](double sum, const Track &track) { return sum + track.info.duration; });
    return AppLocalizer::text(QStringLiteral("Utwory: ") + QString::number(m_album.tracks.size())
        + QStringLiteral(" · ") + durationLabel(seconds) + QStringLiteral(" · ") + byteCount(m_album.bytes()));
}

QString AlbumSheetPresenter::format() const
{
    if (m_album.tracks.empty()) {
        return {};
    }
    const AudioInfo &info = m_album.tracks.front().info;
    return info.codec + QStringLiteral(" · ") + AppLocalizer::text(info.parameters());
}

QString AlbumSheetPresenter::cover() const
{
    const std::optional<QByteArray> artwork = m_album.artworkBytes();
    return artwork && !artwork->isEmpty() ? m_covers->nameOf(*artwork) : QString();
}

void AlbumSheetPresenter::dismiss()
{
    if (m_field == Field::OpenAlbum) {
        m_model.setOpenAlbum(std::nullopt);
    } else {
        m_model.setCoverLookup(std::nullopt);
    }
}
