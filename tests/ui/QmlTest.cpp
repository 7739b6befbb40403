// Runs the tests in qml/ against the pages' own module. `Bench` gives them a real model with albums of real files.
#include "support/CannedServer.h"
#include "support/ModelDesk.h"
#include "ui/MarluneApp.h"
#include "ui/backups/BackupsPresenter.h"
#include "ui/device/DevicePresenter.h"
#include "ui/library/AlbumSheetPresenter.h"
#include "ui/library/LibraryPresenter.h"
#include "ui/lists/FileDrag.h"
#include "ui/playback/PlaybackPresenter.h"
#include "ui/playlists/PlaylistsPresenter.h"
#include "ui/quality/QualityPresenter.h"
#include "ui/shell/DesktopPanels.h"
#include "ui/shell/ShellPresenter.h"
#include "ui/themes/ThemeSheetPresenter.h"
#include "ui/themes/ThemesPresenter.h"

#include "platform/files/PathText.h"

#include <QMimeData>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQuickTest>

const auto covers = std::make_shared<CoverStore>();

/// A model and its presenters for one test; each Bench has folders of its own.
class Bench : public QObject {
    Q_OBJECT
    Q_PROPERTY(MarluneModel *model READ model CONSTANT)
    Q_PROPERTY(ShellPresenter *shell READ shell CONSTANT)
    Q_PROPERTY(DevicePresenter *device READ device CONSTANT)
    Q_PROPERTY(LibraryPresenter *library READ library CONSTANT)
    Q_PROPERTY(PlaylistsPresenter *playlists READ playlists CONSTANT)
    Q_PROPERTY(BackupsPresenter *backups READ backups CONSTANT)
    Q_PROPERTY(QualityPresenter *quality READ quality CONSTANT)
    Q_PROPERTY(AlbumSheetPresenter *albumSheet READ albumSheet CONSTANT)
    Q_PROPERTY(ThemesPresenter *themes READ themes CONSTANT)
    Q_PROPERTY(ThemeSheetPresenter *themeSheet READ themeSheet CONSTANT)
    Q_PROPERTY(PlaybackPresenter *playback READ playback CONSTANT)
    Q_PROPERTY(DesktopPanels *panels READ panels CONSTANT)

public:
    [[nodiscard]] MarluneModel *model() { return m_model.get(); }
    [[nodiscard]] ShellPresenter *shell() { return &m_shell; }
    [[nodiscard]] DevicePresenter *device() { return &m_device; }
    [[nodiscard]] LibraryPresenter *library() { return &m_library; }
    [[nodiscard]] PlaylistsPresenter *playlists() { return &m_playlists; }
    [[nodiscard]] BackupsPresenter *backups() { return &m_backups; }
    [[nodiscard]] QualityPresenter *quality() { return &m_quality; }
    [[nodiscard]] AlbumSheetPresenter *albumSheet() { return &m_albumSheet; }
    [[nodiscard]] ThemesPresenter *themes() { return &m_themes; }
    [[nodiscard]] ThemeSheetPresenter *themeSheet() { return &m_themeSheet; }
    [[nodiscard]] PlaybackPresenter *playback() { return &m_playback; }
    [[nodiscard]] DesktopPanels *panels() { return &m_panels; }

    /// Adds an album of two tracks to the library; returns when it is there.
    Q_INVOKABLE void addAlbum(const QString &artist, const QString &album)
    {
        const std::string folder = "music/" + std::to_string(++m_albums) + "/";
        for (const char *number : {"1", "2"}) {
            m_desk.folder.write(folder + number + ".flac",
                flacWith({"ARTIST=" + artist.toStdString(), "ALBUM=" + album.toStdString()}, number));
        }
        ModelDesk::import(*m_model, m_desk.folder / folder);
    }
    /// An album of several discs, with a cover.
    Q_INVOKABLE void addDiscs(const QString &album, int discs, int tracks)
    {
        const std::string folder = "music/" + std::to_string(++m_albums) + "/";
        for (int disc = 1; disc <= discs; ++disc) {
            for (int track = 1; track <= tracks; ++track) {
                const std::string place = std::to_string(disc) + '-' + std::to_string(track);
                m_desk.folder.write(folder + place + ".flac",
                    flacWith({"ARTIST=A", "ALBUM=" + album.toStdString(), "TITLE=Track " + place,
                                 "DISCNUMBER=" + std::to_string(disc), "TRACKNUMBER=" + std::to_string(track)},
                        place));
            }
        }
        m_desk.folder.write(folder + "cover.png", fileBytes(dataFile("images/plain.png")));
        ModelDesk::import(*m_model, m_desk.folder / folder);
    }
    /// The same, with tracks that can be heard, for nearly four seconds each.
    Q_INVOKABLE void addSounds(const QString &album)
    {
        const fs::path folder = m_desk.folder / "music" / album.toStdString();
        for (const char *name : {"Jeden.mp3", "Dwa.mp3"}) {
            fs::create_directories(folder);
            fs::copy_file(dataFile("media/variable-rate.mp3"), folder / name);
        }
        ModelDesk::import(*m_model, folder);
    }
    /// Takes the files away from under the library.
    Q_INVOKABLE void loseMusic() { fs::remove_all(m_desk.folder / "music"); }
    /// Connects a device that is a test folder or a disk.
    Q_INVOKABLE void connectDevice(const QString &name, bool isVolume)
    {
        m_model->select(m_desk.makeDevice(name.toUtf8().constData(), isVolume));
    }
    /// Writes a file on the device "IPOD" or among the computer's copies.
    Q_INVOKABLE void write(const QString &name, const QString &text)
    {
        m_desk.folder.write(Files::fromText(name), text.toStdString());
    }
    /// Looks at the album of the first track, or at the device's first theme.
    Q_INVOKABLE void openAlbum() { m_model->setOpenAlbum(*m_model->albumWith(m_model->tracks().front().id)); }
    Q_INVOKABLE void openTheme() { m_model->setOpenTheme(m_model->themes().front()); }
    Q_INVOKABLE void forgetAlbum() { m_model->forget(*m_model->openAlbum()); }
    Q_INVOKABLE void disconnectDevice() { m_model->volumeUnmounted(m_model->device()->root); }
    [[nodiscard]] Q_INVOKABLE int queuedTracks() const { return int(m_model->queued().size()); }
    /// Asks as the model does; each answer counts.
    Q_INVOKABLE void ask(bool files, bool folders)
    {
        m_panels.open({.files = files, .folders = folders, .multiple = false, .prompt = {}, .message = {}},
            [this](const auto &) { ++m_answers; });
    }
    [[nodiscard]] Q_INVOKABLE int answers() const { return m_answers; }

    /// Drags a file over the middle of the item, as from a file manager. False if it is not taken.
    Q_INVOKABLE bool dragFileOver(QQuickItem *item)
    {
        const fs::path file = m_desk.folder.write("dropped/a.flac", flacWith({"ALBUM=Dropped"}));
        m_dragged = std::make_unique<QMimeData>();
        m_dragged->setUrls({QUrl::fromLocalFile(QString::fromStdString(file.string()))});
        return dragOver(item);
    }
    /// The same with the library's first track, as from a list; of the device where told so.
    Q_INVOKABLE bool dragTrackOver(QQuickItem *item, bool onDevice)
    {
        const Track &track = m_model->tracks().front();
        m_dragged = FileDrag::mimeData(
            {.paths = {track.url}, .tracks = {track.id}, .onDevice = onDevice, .title = track.title});
        return dragOver(item);
    }
    Q_INVOKABLE void dragAway(QQuickItem *item)
    {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(item->window(), &leave);
    }
    Q_INVOKABLE void letGoOver(QQuickItem *item)
    {
        QDropEvent drop(middle(item), Qt::CopyAction, m_dragged.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(item->window(), &drop);
    }
    /// Texts below `root` that are not shown whole: with an ellipsis, wider than their item, or taller.
    [[nodiscard]] Q_INVOKABLE QStringList clippedTexts(QQuickItem *root) const
    {
        QStringList result;
        for (QQuickItem *item : root->childItems()) {
            const double wide = item->property("contentWidth").toDouble() - item->width();
            const double tall = item->property("contentHeight").toDouble() - item->height();
            const bool cut = item->property("truncated").toBool() || wide > 1 || tall > 1;
            if (item->isVisible() && cut && item->property("elide").isValid()) { // a Text
                result.append(item->property("text").toString());
            }
            result += item->isVisible() ? clippedTexts(item) : QStringList();
        }
        return result;
    }

private:
    bool dragOver(QQuickItem *item)
    {
        QDragEnterEvent enter(middle(item).toPoint(), Qt::CopyAction, m_dragged.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(item->window(), &enter);
        return enter.isAccepted();
    }
    static QPointF middle(const QQuickItem *item) { return item->mapToScene({item->width() / 2, item->height() / 2}); }

    /// A catalogue and an archive of covers with two albums in them, and one picture for both.
    [[nodiscard]] static CannedServer::Answer coverAnswer(const CannedServer::Asked &asked)
    {
        QByteArrayList albums;
        for (const char *id : {"0cd1dd5b-3c5e-4d3a-9f0e-000000000001", "0cd1dd5b-3c5e-4d3a-9f0e-000000000002"}) {
            albums.append("{\"id\":\"" + QByteArray(id) + "\",\"title\":\"T\",\"artist-credit\":[{\"name\":\"A\"}]}");
        }
        return CannedServer::answer("200 OK",
            asked.target.startsWith("/ws/") ? "{\"release-groups\":[" + albums.join(',') + "]}"
                                            : QByteArray::fromStdString(fileBytes(dataFile("images/plain.png"))));
    }

    CannedServer m_server {{}};
    ModelDesk m_desk;
    std::unique_ptr<CoverSearch> &m_covers = m_desk.covers = [this] {
        m_server.answering = coverAnswer;
        return std::make_unique<CoverSearch>(CoverServices {.catalogue = m_server.root(),
            .site = m_server.root(),
            .archive = m_server.root(),
            .spacing = std::chrono::milliseconds(1)});
    }();
    std::unique_ptr<MarluneModel> m_model = m_desk.start();
    ShellPresenter m_shell {*m_model};
    DevicePresenter m_device {*m_model};
    LibraryPresenter m_library {*m_model, covers};
    PlaylistsPresenter m_playlists {*m_model};
    BackupsPresenter m_backups {*m_model};
    QualityPresenter m_quality {*m_model};
    AlbumSheetPresenter m_albumSheet {*m_model, covers};
    bool m_following = (m_albumSheet.followOpenAlbum(), true);
    ThemesPresenter m_themes {*m_model};
    ThemeSheetPresenter m_themeSheet {*m_model};
    PlaybackPresenter m_playback {m_model->playback()};
    DesktopPanels m_panels;
    int m_answers = 0;
    std::unique_ptr<QMimeData> m_dragged;
    int m_albums = 0;
};

class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void applicationAvailable() { MarluneApp::prepareApplication(); }
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        MarluneApp::prepareEngine(*engine, covers);
        qmlRegisterType<Bench>("MarluneTest", 1, 0, "Bench");
    }
};

QUICK_TEST_MAIN_WITH_SETUP(pages, Setup)
#include "QmlTest.moc"
