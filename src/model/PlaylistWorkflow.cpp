// Playlists of what was transferred and of what is selected on the device.
#include "model/Model.h"

#include "storage/Playlist.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"

#include <QPointer>

#include <algorithm>

void MarluneModel::setPlaylistName(const QString &name)
{
    if (m_playlistName != name) {
        m_playlistName = name;
        Q_EMIT playlistNameChanged();
    }
}

std::vector<std::filesystem::path> MarluneModel::playlistTracks() const
{
    std::vector<std::filesystem::path> files = m_transferred;
    for (const Track &track : m_deviceTracks) {
        if (m_selectedOnDevice.contains(track.id)) {
            files.push_back(track.url);
        }
    }
    // As plain text: the order of paths would go by their components.
    std::sort(files.begin(), files.end(), [](const auto &a, const auto &b) { return a.native() < b.native(); });
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

void MarluneModel::makePlaylist()
{
    if (m_device && !m_writingPlaylist) {
        m_writingPlaylist = true;
        runPlaylist(m_device->root);
    }
}

QCoro::Task<> MarluneModel::runPlaylist(std::filesystem::path root)
{
    const QPointer<MarluneModel> self(this);
    QString fileName;
    std::exception_ptr failure;
    try {
        // Short as it is, it waits for the device's disk, which may have to start up first.
        auto work = [name = m_playlistName, tracks = playlistTracks(), root] {
            return Files::name(Storage::playlist(name, tracks, root));
        };
        fileName = co_await background(work);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    m_writingPlaylist = false;
    if (failure) {
        setAlert(describeFailure(failure));
    } else {
        setStatus(QStringLiteral("Zapisano ") + fileName);
        rediscover();
    }
}
