#include "ui/playback/PlaybackPresenter.h"

#include "ui/words/Localization.h"

PlaybackPresenter::PlaybackPresenter(Playback &playback, QObject *parent)
    : QObject(parent)
    , m_playback(playback)
{
    connect(&m_playback, &Playback::currentChanged, this, &PlaybackPresenter::currentChanged);
    connect(&m_playback, &Playback::currentChanged, this, &PlaybackPresenter::positionChanged);
    connect(&m_playback, &Playback::currentChanged, this, &PlaybackPresenter::durationChanged);
    connect(&m_playback, &Playback::playingChanged, this, &PlaybackPresenter::playingChanged);
    connect(&m_playback, &Playback::positionChanged, this, &PlaybackPresenter::positionChanged);
    connect(&m_playback, &Playback::durationChanged, this, &PlaybackPresenter::durationChanged);
    connect(&m_playback, &Playback::volumeChanged, this, &PlaybackPresenter::volumeChanged);
    connect(&m_playback, &Playback::errorChanged, this, &PlaybackPresenter::errorChanged);
}

QString PlaybackPresenter::heading() const
{
    const std::optional<Track> &track = m_playback.current();
    if (!track) {
        return {};
    }
    return AppLocalizer::text(QStringLiteral("Odsłuch na Macu · ") + track->title
        + (track->artist.isEmpty() ? QString() : QStringLiteral(" · ") + track->artist));
}

QString PlaybackPresenter::playingTrack() const
{
    return playing() ? m_playback.current()->id.toString() : QString();
}

double PlaybackPresenter::duration() const
{
    const std::optional<Track> &track = m_playback.current();
    const bool isOpening = m_playback.duration() <= 0 && track && !m_playback.error();
    return isOpening ? track->info.duration : m_playback.duration();
}

QString PlaybackPresenter::positionText() const
{
    return durationLabel(m_playback.position());
}

QString PlaybackPresenter::durationText() const
{
    return duration() > 0 ? durationLabel(duration()) : QStringLiteral("—");
}

QString PlaybackPresenter::error() const
{
    return AppLocalizer::text(m_playback.error().value_or(QString()));
}
