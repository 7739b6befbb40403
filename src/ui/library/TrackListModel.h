// The tracks of the library page as rows, and which of them are selected.
//
// Rows follow the model's filtered tracks a turn of the event loop later, once for a burst of changes; while the page
// or its table is hidden they wait. A row holds where its track was and which one it is, and shows nothing once another
// is there: a long list is replaced without a copy. A few changes arrive as rows put in and taken out, many as a reset.
// Either way what is still there stays selected and the current row. A file that
// was read again is the same row. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/RowListModel.h"
#include "ui/lists/RowSelection.h"
#include "ui/lists/TypeAhead.h"

#include "platform/tasks/BurstTimer.h"

#include <QtQml/qqmlregistration.h>

#include <vector>

class TrackListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The library presenter has one.")
    /// Where the keyboard is; -1 for none.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectedChanged)

public:
    enum Role : std::uint16_t {
        NumberRole = Qt::UserRole, ///< "01 ", empty if unknown
        TitleRole,
        ArtistRole,
        TimeRole,
        FormatRole,
        ParametersRole,
        HighResolutionRole,
        ChosenRole, ///< queued, or on the device selected for a playlist
        PlayingRole,
        MarkedRole, ///< selected in the list
    };

    explicit TrackListModel(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int currentRow() const { return m_selection.current(); }
    [[nodiscard]] int selectedCount() const { return m_selection.count(); }
    [[nodiscard]] const RowSelection &selection() const { return m_selection; }

    // Keyboard and mouse; `modifiers` are Qt::KeyboardModifiers.
    /// Goes to a row, or to the first or last where it lies beyond.
    Q_INVOKABLE void walk(int row, int modifiers);
    /// A press alone selects only what is not selected yet: it may begin a drag of all that is.
    Q_INVOKABLE void press(int row, int modifiers);
    Q_INVOKABLE void click(int row, int modifiers);
    Q_INVOKABLE void makeCurrent(int row);
    Q_INVOKABLE void toggleMark(int row);
    Q_INVOKABLE void selectAll();
    /// Whether anything was selected.
    Q_INVOKABLE bool clearSelection();
    /// Goes to the track whose title begins with what has been typed. False for a key that types nothing.
    Q_INVOKABLE bool type(const QString &text, int modifiers);
    [[nodiscard]] Q_INVOKABLE bool typing() const { return m_typeAhead.isUnderWay(); }
    /// The row at the view's upper edge, with the part of it that is scrolled out, and how many rows the view shows.
    Q_INVOKABLE void setView(double topRow, double rowsInView);

    // What can be done with a track: with all that are selected, where it is one of them.
    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void toggleSelected(int row);
    /// Whether all that toggleSelected() is about are queued or selected.
    [[nodiscard]] Q_INVOKABLE bool selectedAreChosen(int row) const;
    Q_INVOKABLE void revealSelected(int row) const;
    /// Drags the files out; returns when they have been let go.
    Q_INVOKABLE void drag(int row);

    // What is about one track alone.
    /// Plays it with the whole list as its queue; pauses or resumes where it is loaded.
    Q_INVOKABLE void play(int row);
    /// The same, but what is heard goes on.
    Q_INVOKABLE void listen(int row);
    Q_INVOKABLE void preparePlay() { m_model.playback().prepare(); }
    Q_INVOKABLE void openAlbum(int row);

Q_SIGNALS:
    void currentRowChanged();
    void selectedChanged();
    /// All rows are new: this is the one that belongs at the view's upper edge.
    void placed(double topRow);

private:
    struct Row {
        QUuid id;
        std::size_t file = 0; ///< a hash of its path: what stays when it is read again
        std::uint32_t place = 0; ///< among the active tracks
    };
    /// What decides which rows there are, and in what order, but for the tracks themselves.
    struct Order {
        bool onDevice = false;
        bool hiResOnly = false;
        QString search;
        QString format;
        QString sortMode;
        int language = 0;

        bool operator==(const Order &) const = default;
    };

    /// The rows as they were listed, for what follows them.
    struct Listed {
        std::vector<Row> rows;
        RowSelection selection;
        double topRow = 0;
        bool onDevice = false;
    };

    void refreshIfShown();
    void refresh();
    [[nodiscard]] std::vector<Row> freshRows();
    [[nodiscard]] Order order() const;
    /// Selects what was selected before.
    void follow(const Listed &before);
    [[nodiscard]] double topAfter(const Listed &before, bool isOtherOrder) const;
    [[nodiscard]] const Row *row(int index) const;
    /// Null where the row's track is not there any more.
    [[nodiscard]] const Track *track(int index) const;
    [[nodiscard]] bool isPlaying(const Row &row) const;
    [[nodiscard]] QString text(const Track &track, int role) const;
    /// The rows that an action on this one is about.
    [[nodiscard]] std::vector<int> about(int row) const;
    [[nodiscard]] QSet<QUuid> idsAbout(int row) const;
    [[nodiscard]] const QSet<QUuid> &chosen() const;
    /// Runs what changes the selection, and reports the change.
    template <typename Change> void select(const Change &change);
    void renew(Role role);

    MarluneModel &m_model;
    std::vector<Row> m_rows;
    RowSelection m_selection;
    TypeAhead m_typeAhead;
    Order m_order; ///< of m_rows
    /// By place, so that a new order need not look into each track: that is what would take long.
    std::vector<std::pair<QUuid, std::size_t>> m_files;
    double m_topRow = 0;
    double m_rowsInView = 0;
    Listed m_before; ///< while the rows are replaced
    Listed m_gone; ///< when all tracks went: a device that is read again has none in between
    bool m_isOutdated = true;
    BurstTimer m_listChange {[this] { refreshIfShown(); }};
    BurstTimer m_selectionChange {[this] { renew(ChosenRole); }};
};
