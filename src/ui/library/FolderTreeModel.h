// The folders and files of the library page as the rows of an outline, and which of them are selected.
//
// The tree of all tracks is built by a job, when the page first shows it and when tracks come or go; filters and a
// search only choose among its nodes, a turn of the event loop later, once for a burst of changes. While the page or
// the outline is hidden both wait. What is open, selected, current and in sight stays so where it is still there. A row
// holds where its track was and which one it is, and does nothing once another is there. UI thread.
#pragma once

#include "ui/library/FolderRows.h"
#include "ui/library/MusicListModel.h"

#include "platform/tasks/BurstTimer.h"
#include "platform/text/TextOrder.h"

#include <QtQml/qqmlregistration.h>

#include <array>
#include <optional>
#include <vector>

class FolderTreeModel : public MusicListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The library presenter has one.")

public:
    enum Role : std::uint16_t {
        NameRole = Qt::UserRole,
        DepthRole, ///< 0 for the root
        FolderRole,
        OpenRole,
        CountRole, ///< listed tracks in a folder
        ChosenRole, ///< Share of those that are queued, or on the device selected for a playlist
        PlayingRole,
        MarkedRole, ///< selected in the outline
        StateRole, ///< "Poziom 2 · zwinięty · Utwory: 12", for the ear
    };
    enum Share { NoneChosen, SomeChosen, AllChosen };
    Q_ENUM(Share)

    explicit FolderTreeModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const RowSelection &selection() const override { return m_shown.selection; }
    /// The row's node: see FolderTree::id(). Absent where there is no such row.
    [[nodiscard]] std::optional<QString> nodeId(int row) const;

    /// The row at the view's upper edge, with the part of it that is scrolled out.
    Q_INVOKABLE void setTopRow(double row) { m_shown.topRow = row; }

    // Folders.
    Q_INVOKABLE void setOpen(int row, bool open);
    Q_INVOKABLE void toggleOpen(int row);
    Q_INVOKABLE void openBelow(int row);
    /// Closes an open folder, otherwise goes to the folder around the row.
    Q_INVOKABLE void goOut(int row);
    /// Opens a closed folder, goes to the first row in an open one.
    Q_INVOKABLE void goIn(int row);

    // A folder stands for its listed tracks.
    Q_INVOKABLE void toggle(int row);
    /// The computer's root is no folder.
    [[nodiscard]] Q_INVOKABLE bool canReveal(int row) const { return !filesAbout(row).empty(); }

    // What is about one row alone.
    /// Plays a file with what its folder lists as the queue, and a folder from its first file; pauses or resumes what
    /// is loaded.
    Q_INVOKABLE void play(int row) override;
    /// A file is played, but what is heard goes on; a folder is opened or closed.
    Q_INVOKABLE void listen(int row);
    /// Of a file.
    Q_INVOKABLE void openAlbum(int row);
    /// Opens a file's album, opens or closes a folder.
    Q_INVOKABLE void activate(int row) override;

protected:
    [[nodiscard]] RowSelection &ownSelection() override { return m_shown.selection; }
    [[nodiscard]] QString nameAt(int row) const override;
    [[nodiscard]] std::vector<const Track *> tracksAbout(int row) const override;
    [[nodiscard]] std::vector<std::filesystem::path> filesAbout(int row) const override;

private:
    using Node = FolderRows::Node;

    /// Where rows were.
    struct Places {
        std::vector<Node> rows; ///< by the nodes of the tree that is shown; none: gone
        RowSelection selection;
        double topRow = 0;
    };
    /// A tree and what the user made of it.
    struct Shown {
        FolderRows folders;
        std::vector<Node> rows;
        RowSelection selection;
        double topRow = 0;
        std::optional<Places> beforeSearch; ///< while one is shown
        std::shared_ptr<const TrackIdentities> identities; ///< of the tracks that the tree was built of
        std::optional<std::filesystem::path> root;
        TextOrder::Language language = TextOrder::Language::Polish;
    };
    struct Built;

    [[nodiscard]] bool isShown() const;
    void refreshIfShown();
    void refresh();
    [[nodiscard]] bool isCurrent(const Shown &shown) const;
    [[nodiscard]] Shown &aside() { return m_aside[model().libraryOnDevice() ? 1 : 0]; }
    void putAside();
    QCoro::Task<> runBuilding();
    void land(const Built &built);
    void list(Places before);
    void changeRowsTo(const std::vector<Node> &wanted, Places before);
    void follow(const Places &before);
    [[nodiscard]] double topAfter(const Places &before) const;
    [[nodiscard]] Places places() const;
    /// -1 where it is not seen.
    [[nodiscard]] int rowOf(Node node) const;
    /// The node's row, or that of the folder in which it is hidden; -1 where that is not listed either.
    [[nodiscard]] int rowNear(Node node) const;

    [[nodiscard]] std::optional<std::filesystem::path> root() const;
    [[nodiscard]] std::vector<bool> chosenTracks() const;
    [[nodiscard]] std::vector<bool> listedTracks() const;
    [[nodiscard]] const FolderTree &tree() const { return *m_shown.folders.tree(); }
    /// Absent also for a row that is about to go.
    [[nodiscard]] std::optional<Node> node(int row) const;
    [[nodiscard]] QString name(Node node) const;
    [[nodiscard]] QString state(Node node) const;
    /// Null where the file's track is not there any more.
    [[nodiscard]] const Track *track(Node file) const;
    /// The nodes that an action on this row is about, without those in a folder that is one of them.
    [[nodiscard]] std::vector<Node> nodesAbout(int row) const;
    /// The listed tracks at and below these.
    [[nodiscard]] std::vector<const Track *> tracksIn(const std::vector<Node> &nodes) const;
    [[nodiscard]] std::optional<std::filesystem::path> pathOf(Node node) const;
    /// The listed tracks of these files around one of them; a long list is cut.
    [[nodiscard]] std::vector<Track> queueAround(Node file, const std::vector<Node> &files) const;
    void refreshChosen();
    void refreshPlaying();

    Shown m_shown;
    std::array<Shown, 2> m_aside; ///< of each side, while the other one is shown or there are no tracks
    bool m_isOnDevice = false; ///< the side of m_shown
    QString m_search; ///< that the rows were listed for
    Node m_playing = FolderNode::none; ///< the file that is heard
    bool m_tracksMayDiffer = true; ///< from those of the tree
    bool m_isOutdated = true;
    bool m_isBuilding = false;
    BurstTimer m_change {[this] { refreshIfShown(); }};
    BurstTimer m_selectionChange {[this] { refreshChosen(); }};
};
