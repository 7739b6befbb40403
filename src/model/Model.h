// The one observable state of the program. Pages show it and call its actions; it starts every workflow.
//
// Belongs to the UI thread, all of it. Work that touches a disk runs in background jobs that get copies and whose
// results are written here on the UI thread. A workflow returns at once; `busy` excludes a second long job, which is
// dropped without a word. A failure, or a notice that must be read, ends up in `alert`, a short result in `status`.
#pragma once

#include "playback/Playback.h"

#include "library/Album.h"

#include "model/Browsing.h"
#include "model/DeviceContent.h"
#include "model/DeviceFinder.h"
#include "model/DuplicateCheck.h"
#include "model/IPodProfile.h"
#include "model/ModelEnvironment.h"
#include "model/RunningWork.h"
#include "model/Section.h"

#include "platform/tasks/Background.h"

#include <QObject>
#include <QSet>

#include <deque>
#include <functional>
#include <map>
#include <stop_token>

struct TrackImport;
struct TracksRead;
namespace Storage {
class DeviceAnchor;
}

class MarluneModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString section READ sectionText WRITE setSectionText NOTIFY sectionChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
    Q_PROPERTY(bool readingMusic READ readingMusic NOTIFY busyChanged) ///< what makes it busy
    Q_PROPERTY(bool cancellable READ cancellable NOTIFY busyChanged)
    Q_PROPERTY(bool cancelling READ cancelling NOTIFY cancellingChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    Q_PROPERTY(QString alert READ alertText NOTIFY alertChanged)
    Q_PROPERTY(bool libraryOnDevice READ libraryOnDevice WRITE setLibraryOnDevice NOTIFY libraryOnDeviceChanged)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(QString formatFilter READ formatFilter WRITE setFormatFilter NOTIFY formatFilterChanged)
    Q_PROPERTY(bool hiResOnly READ hiResOnly WRITE setHiResOnly NOTIFY hiResOnlyChanged)
    Q_PROPERTY(QString viewMode READ viewMode WRITE setViewMode NOTIFY viewModeChanged)
    Q_PROPERTY(QString sortMode READ sortMode WRITE setSortMode NOTIFY sortModeChanged)
    Q_PROPERTY(double tileSize READ tileSize WRITE setTileSize NOTIFY tileSizeChanged)
    Q_PROPERTY(QString duplicateStatus READ duplicateStatus NOTIFY duplicateStatusChanged)
    Q_PROPERTY(QString playlistName READ playlistName WRITE setPlaylistName NOTIFY playlistNameChanged)
    Q_PROPERTY(QString deviceProfileId READ deviceProfileId NOTIFY appearanceChanged)
    Q_PROPERTY(QString deviceFinish READ deviceFinish NOTIFY appearanceChanged)
    Q_PROPERTY(bool showCoverFlow READ showCoverFlow WRITE setShowCoverFlow NOTIFY showCoverFlowChanged)

public:
    explicit MarluneModel(ModelEnvironment environment, QObject *parent = nullptr);
    /// Waits a moment for running jobs; the results of those that hang on a disk are dropped.
    ~MarluneModel() override;

    // The page shown.
    [[nodiscard]] Section section() const { return m_section; }
    void setSection(Section section);

    // Devices.
    [[nodiscard]] const std::vector<Device> &devices() const { return m_finder.devices(); }
    [[nodiscard]] const std::optional<Device> &device() const { return m_device; }
    /// Files copied to the selected device since it was selected, by path.
    [[nodiscard]] const std::vector<std::filesystem::path> &transferred() const { return m_transferred; }
    /// Backup folders on the computer, newest first.
    [[nodiscard]] const std::vector<std::filesystem::path> &backups() const { return m_backups; }
    /// Looks for devices again. Calls while a discovery is under way are dropped.
    Q_INVOKABLE void refresh();
    void select(const Device &device);
    /// Asks for a folder and selects it if it is a device.
    Q_INVOKABLE void chooseDevice();
    /// Whether the selected device can be ejected: it is a mounted disk on which nothing is being done.
    [[nodiscard]] bool canEject() const { return m_device && m_device->isVolume && !busy() && !m_writingPlaylist; }
    Q_INVOKABLE void eject();
    /// The illustration and finish chosen for the selected device; "auto" forgets the choice.
    void setAppearance(const QString &id);
    void setFinish(const QString &id);
    /// Absent where the illustration follows from what the firmware says.
    [[nodiscard]] std::optional<QString> chosenAppearance() const;
    /// The model that the selected device is drawn as: the chosen one, else what the firmware's target tells.
    [[nodiscard]] const IPodProfile &deviceProfile() const;
    /// Its colour: the chosen one, else the profile's own.
    [[nodiscard]] QString deviceFinish() const;
    /// The user's own words on the selected device.
    [[nodiscard]] QString deviceDescription() const;
    void setDeviceDescription(const QString &text);

    // What the selected device holds, as its last reading saw it.
    [[nodiscard]] const std::vector<Theme> &themes() const { return m_content.themes; }
    /// By theme id; of themes that were seen before too.
    [[nodiscard]] const ThemePreviews &themePreviews() const { return m_content.themePreviews; }
    /// Another number after each change of them, also of a picture under its old name.
    [[nodiscard]] int themePreviewRevision() const { return m_previewRevision; }
    /// By theme id.
    [[nodiscard]] const QMap<QString, Configuration> &themeSettings() const { return m_content.themeSettings; }
    /// What the firmware says of itself, and how it is set up.
    [[nodiscard]] const Configuration &deviceInfo() const { return m_content.deviceInfo; }
    [[nodiscard]] const Configuration &deviceConfig() const { return m_content.deviceConfig; }
    [[nodiscard]] const std::vector<std::filesystem::path> &playlists() const { return m_content.playlists; }
    /// Absent until it is known.
    [[nodiscard]] const std::optional<Volumes::Traits> &deviceVolume() const { return m_content.volume; }
    [[nodiscard]] bool deviceHasMusicFolder() const { return m_content.hasMusicFolder; }
    /// How the catalogue's previews came; empty before.
    [[nodiscard]] QString themePreviewStatus() const { return m_themePreviewStatus; }
    /// Reads it all anew. Only the newest reading lands, and only on the device that it read.
    void loadDeviceContent();
    /// Asks the catalogue for the themes' previews; at the first reading of a device's themes this happens by itself.
    Q_INVOKABLE void fetchThemePreviews();
    /// The catalogue's page for devices of this kind, to be looked at.
    [[nodiscard]] QUrl themeCataloguePage() const;
    /// The theme that the device has active.
    [[nodiscard]] std::optional<Theme> configuredTheme() const;
    /// The theme that is being looked at; none once the device, or the theme on it, has gone.
    [[nodiscard]] const std::optional<Theme> &openTheme() const { return m_openTheme; }
    void setOpenTheme(const std::optional<Theme> &theme);
    /// Asks for a picture and keeps a copy of it as the theme's preview. What is no picture is ignored.
    void chooseThemePreview(const Theme &theme);
    /// Asks for a theme's package and installs it on the selected device, with a backup before that. A call while a
    /// long job runs is dropped, and so is an answer that comes while one runs or for a device that is no longer
    /// selected.
    Q_INVOKABLE void installTheme();
    /// Installs this package, without asking.
    void installTheme(const std::filesystem::path &zip);

    // Library.
    [[nodiscard]] const std::vector<Track> &tracks() const { return m_browsing.tracks(Side::Computer); }
    [[nodiscard]] const std::vector<Track> &deviceTracks() const { return m_browsing.tracks(Side::Device); }
    /// What deviceTracks() are; tracksChanged() tells of its change.
    [[nodiscard]] DeviceReading deviceReading() const { return m_deviceReading; }
    [[nodiscard]] bool libraryOnDevice() const { return m_browsing.side() == Side::Device; }
    void setLibraryOnDevice(bool onDevice);
    /// Asks for files and folders and adds their music to the library and the queue.
    Q_INVOKABLE void importMusic();
    void importURLs(const std::vector<std::filesystem::path> &urls, bool fromDevice, bool enqueue);
    /// Reads the music of the selected device.
    Q_INVOKABLE void scanDeviceMusic();

    // Collection quality.
    /// Files of the active tracks that are identical, as the last check found them.
    [[nodiscard]] const std::vector<QualityIssue> &duplicateIssues() const { return m_duplicates.issues(); }
    [[nodiscard]] QString duplicateStatus() const { return m_duplicates.status(); }
    /// Whether those are all that there are: a check of the active tracks came to its end.
    [[nodiscard]] bool duplicatesChecked() const { return m_duplicates.isComplete(); }
    /// Compares the active tracks' files by their content, which takes minutes on a device. What a check finds about
    /// tracks that are not shown any more by then is dropped.
    Q_INVOKABLE void checkDuplicates();

    // Browsing: see Browsing.h.
    [[nodiscard]] const std::vector<Track> &activeTracks() const { return m_browsing.activeTracks(); }
    [[nodiscard]] bool matches(const Track &track) const { return m_browsing.matches(track); }
    [[nodiscard]] std::shared_ptr<const AlbumList> albums() const { return m_browsing.albums(); }
    [[nodiscard]] std::shared_ptr<const Album> albumWith(const QUuid &trackId) const
    {
        return m_browsing.albumWith(trackId);
    }
    /// The album of this identity on the side that is shown, or on the one that `onDeviceOverride` names; null if none.
    [[nodiscard]] std::shared_ptr<const Album> albumOf(
        const QString &albumId, std::optional<bool> onDeviceOverride = std::nullopt) const
    {
        return m_browsing.albumOf(side(onDeviceOverride), albumId);
    }
    [[nodiscard]] std::shared_ptr<const LibraryIndex> index() const { return m_browsing.index(); }
    [[nodiscard]] std::shared_ptr<const TrackPlaces> filteredTracks() const { return m_browsing.filteredTracks(); }
    [[nodiscard]] std::size_t filteredTrackCount() const { return m_browsing.filteredTrackCount(); }
    [[nodiscard]] std::shared_ptr<const TrackMatches> trackMatches() const { return m_browsing.trackMatches(); }
    /// The tracks of the side that is shown, or that `onDeviceOverride` names, as they are now, for a job: it sees none
    /// of what happens to them later.
    [[nodiscard]] std::shared_ptr<const std::vector<Track>> sharedTracks(
        std::optional<bool> onDeviceOverride = std::nullopt) const
    {
        return m_browsing.contents(side(onDeviceOverride)).tracks;
    }
    [[nodiscard]] QString search() const { return m_browsing.search(); }
    void setSearch(const QString &text);
    [[nodiscard]] QString formatFilter() const { return m_browsing.formatFilter(); }
    void setFormatFilter(const QString &filter);
    [[nodiscard]] bool hiResOnly() const { return m_browsing.hiResOnly(); }
    void setHiResOnly(bool only);
    [[nodiscard]] QString viewMode() const { return m_viewMode; }
    void setViewMode(const QString &mode);
    [[nodiscard]] QString sortMode() const { return m_browsing.sortMode(); }
    void setSortMode(const QString &mode);
    [[nodiscard]] double tileSize() const { return m_tileSize; }
    void setTileSize(double size);
    [[nodiscard]] const std::optional<Album> &openAlbum() const { return m_openAlbum; }
    void setOpenAlbum(const std::optional<Album> &album);

    /// The rules of text order have changed. Long lists follow a moment later.
    void reorder();

    // The carousel of the device's albums, in a window of its own.
    [[nodiscard]] bool showCoverFlow() const { return m_showCoverFlow; }
    /// The window says when it has been closed.
    void setShowCoverFlow(bool shown);
    /// Asks for it, with the device's music; nothing happens without a device or while a long job runs.
    Q_INVOKABLE void revealCoverFlow();

    // Queue and selection.
    [[nodiscard]] const QSet<QUuid> &queued() const { return m_browsing.chosen(Side::Computer); }
    [[nodiscard]] const QSet<QUuid> &selectedOnDevice() const { return m_browsing.chosen(Side::Device); }
    /// The queued tracks in the library's order.
    [[nodiscard]] std::vector<Track> queue() const { return m_browsing.queue(); }
    [[nodiscard]] std::size_t queueCount() const { return m_browsing.queueCount(); }
    [[nodiscard]] std::int64_t queueBytes() const { return m_browsing.queueBytes(); }
    /// Adds the album to the set of the side that is shown, or that `onDeviceOverride` names; or takes it out if all of
    /// it is there.
    void toggle(const Album &album, std::optional<bool> onDeviceOverride = std::nullopt);
    void toggleTrack(const Track &track, std::optional<bool> onDeviceOverride = std::nullopt);
    /// Tracks of the side that is shown, by their ids, in the way of an album.
    void toggleTracks(const QSet<QUuid> &ids);
    /// Adds those that are tracks of the computer.
    void enqueue(const QSet<QUuid> &ids);
    [[nodiscard]] const QSet<QUuid> &chosen(std::optional<bool> onDeviceOverride) const
    {
        return m_browsing.chosen(side(onDeviceOverride));
    }
    Q_INVOKABLE void clearQueue();
    /// Drops the album from the library; its files stay. What lies in folders of its own and was not brought back
    /// because the reading was ended goes with it.
    void forget(const Album &album);

    // Transfer.
    /// Copies the given tracks, or the queue, to the selected device.
    void transfer(const std::optional<std::vector<Track>> &only);
    Q_INVOKABLE void transferQueue() { transfer(std::nullopt); }
    /// Removes the files that macOS left beside the music on the device; copies of them go to the computer.
    Q_INVOKABLE void cleanupMacFiles();

    // Covers. Each goes to the side that is shown now, or to the one that `onDeviceOverride` names, and to the store on
    // the computer; a call while a long job runs is dropped.
    /// The album that a cover is being looked for by hand.
    [[nodiscard]] const std::optional<Album> &coverLookup() const { return m_coverLookup; }
    void setCoverLookup(const std::optional<Album> &album);
    /// Makes a cover of the album's own picture (`current`), or of a file that the user is asked for.
    void chooseArtwork(const Album &album, bool current, std::optional<bool> onDeviceOverride = std::nullopt);
    /// Finds covers on the network; shared by all that search, so that they keep to one rhythm.
    [[nodiscard]] CoverSearch &coverSearch() const { return m_environment.covers; }
    /// The page about the picture that was last downloaded for an album; invalid where none was.
    [[nodiscard]] QUrl coverSource(const QString &albumId) const;
    /// Fetches the picture of a search's result.
    void downloadCover(
        const CoverCandidate &candidate, const Album &album, std::optional<bool> onDeviceOverride = std::nullopt);
    /// Looks on the network for each album without a cover; only an unambiguous result is taken.
    Q_INVOKABLE void findMissingCovers();
    /// Makes the pictures that are there, but that the firmware cannot show, into covers that it can.
    Q_INVOKABLE void repairAvailableCovers();

    // Playlists and backups.
    [[nodiscard]] QString playlistName() const { return m_playlistName; }
    void setPlaylistName(const QString &name);
    /// The same words in another language: they replace the name that the box has at the start, and no other.
    void renewDefaultPlaylistName(const QString &name);
    /// What a new playlist is to hold: the files transferred and those selected on the device, each once, by path.
    [[nodiscard]] std::vector<std::filesystem::path> playlistTracks() const;
    /// Writes them to the device as a playlist. A call while one is being written is dropped.
    Q_INVOKABLE void makePlaylist();
    /// A folder for a new backup: neither it nor its parent need exist yet.
    [[nodiscard]] std::filesystem::path newBackupURL() const;
    /// Copies the settings and themes of the selected device to the computer.
    Q_INVOKABLE void backup();

    // Listening on the computer. It goes on whatever else is under way, and ends when the device is ejected or lost.
    [[nodiscard]] Playback &playback() { return m_playback; }

    // Progress and messages.
    [[nodiscard]] bool busy() const { return m_work.busy(); }
    [[nodiscard]] bool readingMusic() const { return m_isReadingMusic; }
    /// Whether something is under way that the end of the program would cut off; a check for duplicates only reads.
    [[nodiscard]] bool working() const { return (busy() && !m_duplicates.isRunning()) || m_writingPlaylist; }
    /// Whether the running job can end between two files.
    [[nodiscard]] bool cancellable() const { return m_work.cancellable(); }
    /// Whether it has been asked to, and is about to.
    [[nodiscard]] bool cancelling() const { return m_work.cancelling(); }
    /// Has the running job end between two files, and what waits for the network at once. What is complete stays, the
    /// status says how far it came, and the same job begun again does the rest; but the companion files of macOS that a
    /// transfer was about to remove wait for the next transfer or cleanupMacFiles(). Nothing where the job cannot.
    Q_INVOKABLE void cancelWork();
    /// The same for a job that waits for the network, and for no other: for a window that closes.
    void endCoverRequests();
    /// Of the running job's present stage, 0 to 1; 0 where it cannot be said.
    [[nodiscard]] double progress() const { return m_work.progress(); }
    /// What may be shown of the time that the running job still takes; to be asked about once a second.
    [[nodiscard]] std::optional<std::chrono::seconds> timeLeft() { return m_work.timeLeft(); }
    [[nodiscard]] QString status() const { return m_work.status(); }
    [[nodiscard]] const std::optional<QString> &alert() const { return m_work.alert(); }
    Q_INVOKABLE void dismissAlert();

    // What the platform reports.
    void volumeMounted();
    void volumeUnmounted(const std::filesystem::path &mountPoint);

Q_SIGNALS:
    void sectionChanged();
    void devicesChanged();
    void deviceChanged();
    void backupsChanged();
    void transferredChanged();
    void themesChanged();
    /// Also where a picture was replaced under its old name.
    void themePreviewsChanged();
    void themePreviewStatusChanged();
    /// What the device says of itself, of its volume or of its themes changed.
    void deviceSettingsChanged();
    void playlistsChanged();
    /// The library of the computer or of the device holds other tracks, or deviceReading() is another.
    void tracksChanged();
    /// Tracks there have another cover; browsingChanged() follows where they are shown.
    void artworkChanged();
    void libraryOnDeviceChanged();
    /// albums() and filteredTracks() may differ from what they were.
    void browsingChanged();
    void searchChanged();
    void formatFilterChanged();
    void hiResOnlyChanged();
    void viewModeChanged();
    void sortModeChanged();
    void tileSizeChanged();
    void playlistNameChanged();
    void openAlbumChanged();
    void coverLookupChanged();
    /// A downloaded cover is in place, and coverSource() tells where it came from.
    void coverDownloaded(const QString &albumId);
    void openThemeChanged();
    /// The queue or the selection on the device changed.
    void selectionChanged();
    void duplicateIssuesChanged();
    void duplicateStatusChanged();
    void busyChanged();
    void cancellingChanged();
    void workingChanged();
    void progressChanged();
    void statusChanged();
    void alertChanged();
    /// deviceProfile(), deviceFinish() or deviceDescription() may differ from what they were.
    void appearanceChanged();
    void showCoverFlowChanged();
    /// The carousel was asked for while it is shown: its window is to come to the front.
    void coverFlowWanted();

private:
    struct PlannedTransfer;
    struct EndedTransfer;
    struct PreparedCover;
    struct ImportReading;
    /// Where an album is, as it was when the user asked: what it gets goes there, or nowhere.
    struct CoverPlace {
        bool onDevice = false;
        std::optional<std::filesystem::path> root; ///< of the device
        std::shared_ptr<const Storage::DeviceAnchor> device; ///< held from the job's begin to its end
        int visit = 0;
    };
    /// What became of one album of a search for covers.
    enum class CoverFinding : std::uint8_t { Added, Manual, Unavailable };
    /// Gives a picture's bytes, or none if it cannot be read. Blocking.
    using PictureSource = std::function<std::optional<QByteArray>()>;
    /// Reports from a job's thread how much of the work is done.
    using JobProgress = std::function<void(int done, int total)>;

    [[nodiscard]] QString sectionText() const { return sectionTitle(m_section); }
    void setSectionText(const QString &title);
    [[nodiscard]] Side side(std::optional<bool> onDeviceOverride) const
    {
        return onDeviceOverride.value_or(libraryOnDevice()) ? Side::Device : Side::Computer;
    }
    [[nodiscard]] QString alertText() const { return alert().value_or(QString()); }
    [[nodiscard]] QString deviceProfileId() const { return deviceProfile().id; }
    /// What was chosen for the selected device and is stored under this prefix.
    [[nodiscard]] std::optional<QString> choice(const QString &prefix) const;

    /// The folder on the computer that holds every safety copy.
    [[nodiscard]] std::filesystem::path backupRoot() const;
    /// Shows what a job reports as long as the model lives and is busy; the job does not wait for it. `shares` of the
    /// time that are done with each step; empty: the steps are alike.
    [[nodiscard]] JobProgress postedProgress(std::vector<double> shares = {});
    void setDevice(const std::optional<Device> &device);
    void setTransferred(std::vector<std::filesystem::path> files);
    void clearDeviceMusic();
    void setDeviceContent(DeviceContent content);
    void setThemePreviewStatus(const QString &status);
    /// The kind of device whose themes fit the selected one.
    [[nodiscard]] QString themeTarget() const;
    void forgetDeviceContent();
    void forgetThemePreviews();
    void abandonDeviceContent();
    void setChoice(const QString &prefix, const QString &id);
    void onTracksChanged();
    void setArtwork(const QSet<QUuid> &ids, const QByteArray &image, bool onDevice);
    void forgetDuplicates();
    void storeLibraryPaths();
    void readBackups();
    QCoro::Task<> runBackupsReading();
    void disconnect();

    QCoro::Task<> runRefresh();
    QCoro::Task<> runChoice(std::filesystem::path folder);
    QCoro::Task<> runEject(Device device);
    QCoro::Task<> runContentLoad(std::filesystem::path root);
    QCoro::Task<> runThemePreviewChoices();
    QCoro::Task<> runPreviewFetch();
    QCoro::Task<> runThemeInstall(
        std::filesystem::path zip, std::filesystem::path root, std::filesystem::path backupFolder);
    /// What an import starts from; asked in the background, since the answer can lie on a slow disk. Absent: there is
    /// nothing to import, and all stays as it is.
    using ImportSource = std::function<std::vector<std::filesystem::path>(const std::stop_token &stop)>;
    /// Where the tracks go: to the library, also to the queue, back to the library of the last run, to the device's;
    /// the last are all that the device has.
    enum class ImportKind : std::uint8_t { Added, Enqueued, Restored, Device, WholeDevice };
    [[nodiscard]] static bool isFromDevice(ImportKind kind)
    {
        return kind == ImportKind::Device || kind == ImportKind::WholeDevice;
    }
    void beginImport(ImportSource source, ImportKind kind);
    /// Shows how far the reading has come, as postedProgress() does.
    [[nodiscard]] JobProgress importProgress();
    QCoro::Task<> runImport(ImportSource source, ImportKind kind);
    QCoro::Task<> runCleanup(Device device);
    QCoro::Task<> runDuplicateCheck(std::shared_ptr<const std::vector<Track>> tracks);
    QCoro::Task<> runTransfer(std::shared_ptr<const PlannedTransfer> transfer);
    QCoro::Task<> runPlaylist(std::filesystem::path root);
    QCoro::Task<> runBackup(std::filesystem::path root, std::filesystem::path destination);
    [[nodiscard]] CoverPlace coverPlace(std::optional<bool> onDeviceOverride = std::nullopt) const;
    [[nodiscard]] bool isReachable(const CoverPlace &place) const;
    QCoro::Task<CoverPlace> heldPlace(CoverPlace place);
    [[nodiscard]] static PreparedCover prepareCover(const Album &album, const QByteArray &data, const CoverPlace &place,
        const std::filesystem::path &supportFolder, const std::filesystem::path &backupRoot);
    QCoro::Task<> applyArtwork(Album album, QByteArray data, CoverPlace place);
    void recordArtwork(const Album &album, const PreparedCover &cover, bool onDevice);
    void saveCoverSource(const CoverCandidate &candidate, const Album &album);
    QCoro::Task<> runArtworkChoice(Album album, PictureSource source, CoverPlace place);
    QCoro::Task<> fetchCover(CoverCandidate candidate, Album album, CoverPlace place);
    QCoro::Task<> runCoverDownload(CoverCandidate candidate, Album album, CoverPlace place);
    QCoro::Task<CoverFinding> findCover(Album album, CoverPlace place);
    QCoro::Task<> runCoverSearch(std::vector<Album> albums, CoverPlace place);
    void reportCoverSearch(std::map<CoverFinding, int> counts, int done, int total, const QStringList &losses);
    QCoro::Task<> runRepair(CoverPlace place);
    void reportRepair(int repaired, int failed, int total, bool onDevice, const QStringList &losses);
    void setAlert(const QString &text, const QStringList &losses);
    void applyTransfer(const PlannedTransfer &transfer, EndedTransfer ended, bool isReplaced);
    /// The order of paths as plain text; their own goes by components.
    [[nodiscard]] static bool isBeforeAsText(const std::filesystem::path &a, const std::filesystem::path &b)
    {
        return a.native() < b.native();
    }
    void addTransferred(int visit, std::vector<std::filesystem::path> files);
    void applyDevices(std::vector<Device> found);
    void applyContent(DeviceContent read);
    void applyPreviews(const ThemePreviews &found);
    void rediscover();
    QCoro::Task<> runReorder();
    void restoreLibrary();
    void applyImport(const ImportReading &reading, ImportKind kind);

    ModelEnvironment m_environment;
    RunningWork m_work;
    bool m_isReadingMusic = false; ///< is what runs
    DuplicateCheck m_duplicates;
    Playback m_playback {m_environment.audioOutput};
    Section m_section = Section::Music;
    DeviceFinder m_finder;
    std::optional<Device> m_device;
    Browsing m_browsing;
    int m_textOrder = 0; ///< counts the orders of texts: lists that were begun in another one do not land
    QStringList
        m_unrestored; ///< stored paths, in their order, of tracks that did not come back because the reading was ended
    DeviceReading m_deviceReading = DeviceReading::None;
    std::vector<std::filesystem::path> m_backups;
    bool m_readingBackups = false;
    bool m_backupsOutdated = false; ///< they may have changed since the last reading began
    std::vector<std::filesystem::path> m_transferred;
    DeviceContent m_content;
    std::optional<Theme> m_openTheme;
    int m_previewRevision = 0;
    QString m_themePreviewStatus;
    std::deque<std::pair<Theme, std::filesystem::path>> m_previewChoices; ///< the first is being stored
    std::unique_ptr<QObject> m_previewRequest; ///< owns the exchange with the catalogue; its end ends that
    QUuid m_contentGeneration; ///< of the reading that may land
    std::stop_source m_contentReading; ///< ends that reading early
    QString m_playlistName = m_environment.playlistName;
    bool m_playlistNameIsOwn = false; ///< the user has written it
    bool m_writingPlaylist = false;
    std::optional<Album> m_openAlbum;
    std::optional<Album> m_coverLookup;
    bool m_showCoverFlow = false;
    std::unique_ptr<QObject> m_coverRequest; ///< while one runs: owns the exchange about covers; its end ends that
    QString m_viewMode;
    double m_tileSize = 0;
    int m_visit = 0; ///< counts selected devices: another one may come to the same place
    std::optional<std::filesystem::path> m_ejecting; ///< root of the volume that is on its way out
    bool m_unmountedWhileEjecting = false;
};
