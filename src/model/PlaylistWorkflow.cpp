// Playlists of what was transferred and of what is selected on the device.
#include "model/Model.h"

#include "storage/Playlist.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"

#include <QPointer>

#include <algorithm>

void MarluneModel::setPlaylistName(const QString &name)
{
    m_playlistNameIsOwn = true;
    if (m_playlistName != name) {
        m_playlistName = name;
        Q_EMIT playlistNameChanged();
    }
}

void MarluneModel::renewDefaultPlaylistName(const QString &name)
{
    if (!m_playlistNameIsOwn && m_playlistName != name) {
        m_playlistName = name;
        Q_EMIT playlistNameChanged();
    }
}

std::vector<std::filesystem::path> MarluneModel::playlistTracks() const
{
    std::vector<std::filesystem::path> files = m_transferred;
    for (const Track &track : deviceTracks()) {
        if (selectedOnDevice().contains(track.id)) {
            files.push_back(track.url);
        }
    }
    std::sort(files.begin(), files.end(), isBeforeAsText);
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

void MarluneModel::makePlaylist()
{
    if (m_device && !m_writingPlaylist && !m_ejecting) {
        m_writingPlaylist = true;
        Q_EMIT workingChanged();
        runPlaylist(m_device->root);
    }
}

QCoro::Task<> MarluneModel::runPlaylist(std::filesystem::path root)
{
    const QPointer<MarluneModel> self(this);
    // Short as it is, it waits for the device's disk, which may have to start up first.
    auto work = [name = m_playlistName, tracks = playlistTracks(), root] {
        return Files::name(Storage::playlist(name, tracks, root));
    };
    const auto fileName = co_await attempt(work);
    if (!self) {
        co_return;
    }
    m_writingPlaylist = false;
    if (fileName.failure) {
        m_work.setAlert(describeFailure(fileName.failure));
    } else {
        m_work.setStatus(QStringLiteral("Zapisano ") + *fileName.value);
        rediscover();
    }
    Q_EMIT workingChanged();
}
