#include "ui/playlists/PlaylistsPresenter.h"

#include "storage/Playlist.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/files/Files.h"

#include <QGuiApplication>

PlaylistsPresenter::PlaylistsPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_lengths(Storage::playlistLength)
    , m_playlists([](const std::filesystem::path &file) { return Wording::fileName(Files::baseName(file)); },
          [this](const std::filesystem::path &file) { return detail(file); })
{
    m_change.follow(m_model, &MarluneModel::sectionChanged, &MarluneModel::deviceChanged, &MarluneModel::busyChanged,
        &MarluneModel::workingChanged, &MarluneModel::transferredChanged, &MarluneModel::tracksChanged,
        &MarluneModel::selectionChanged, &MarluneModel::playlistsChanged);
    m_reading.follow(m_model, &MarluneModel::sectionChanged, &MarluneModel::deviceChanged, &MarluneModel::busyChanged,
        &MarluneModel::playlistsChanged);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) { // another program may have written to them
            m_reading.start();
        }
    });
    connect(&m_model, &MarluneModel::busyChanged, this, [this] {
        if (m_model.busy()) {
            m_lengths.stop(); // an eject would find the device's files in use
        }
    });
    connect(&m_lengths, &FigureReader::landed, &m_playlists, &FileListModel::refreshDetails);
}

QString PlaylistsPresenter::content() const
{
    return AppLocalizer::text(
        QString::number(m_tracks) + QStringLiteral(" utworów: ostatnie transfery i zaznaczone albumy z iPoda."));
}

bool PlaylistsPresenter::canSave() const
{
    return m_tracks > 0 && m_model.device() && !m_model.working() && !m_model.busy();
}

QString PlaylistsPresenter::detail(const std::filesystem::path &playlist) const
{
    const FigureReader::Figure *length = m_lengths.figure(playlist);
    if (!length) {
        return {};
    }
    return AppLocalizer::text(length->value ? QStringLiteral("Utwory: ") + QString::number(*length->value)
                                            : QStringLiteral("Nie udało się odczytać"));
}

void PlaylistsPresenter::refresh()
{
    if (isShown()) {
        m_tracks = m_model.playlistTracks().size();
        m_playlists.show(m_model.playlists());
        Q_EMIT changed();
    }
}

void PlaylistsPresenter::readLengths()
{
    if (isShown() && !m_model.busy()) {
        m_lengths.read(m_model.playlists());
    } else {
        m_lengths.stop();
    }
}

void PlaylistsPresenter::reveal(int row) const
{
    if (const auto playlist = m_playlists.file(row)) {
        Desktop::reveal({*playlist});
    }
}
