// What the lists of the library page have in common: which rows are selected and which one is current, what keys and
// the mouse make of that, and what can be done with the tracks that rows stand for.
//
// Row numbers come from views and may be of rows that are gone; then nothing is done. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/RowListModel.h"
#include "ui/lists/RowSelection.h"
#include "ui/lists/TypeAhead.h"

#include <QColor>
#include <QFont>
#include <QtQml/qqmlregistration.h>

#include <filesystem>
#include <vector>

class MusicListModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Only the lists themselves are made.")
    /// Where the keyboard is; -1 for none.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectedChanged)

public:
    [[nodiscard]] int currentRow() const { return selection().current(); }
    [[nodiscard]] int selectedCount() const { return selection().count(); }
    [[nodiscard]] virtual const RowSelection &selection() const = 0;

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
    /// Goes to the row whose name begins with what has been typed. False for a key that types nothing.
    Q_INVOKABLE bool type(const QString &text, int modifiers);
    [[nodiscard]] Q_INVOKABLE bool typing() const { return m_typeAhead.isUnderWay(); }

    /// Where a row lies in the present order, in a few characters: "Ł", "1997", "12,3 MB". Empty where there is nothing
    /// to tell.
    [[nodiscard]] Q_INVOKABLE virtual QString landmark(int /*row*/) const { return {}; }

    // What can be done with a row: with all that are selected, where it is one of them.
    /// Queues its tracks, or selects them for a playlist; takes them out where all are in.
    Q_INVOKABLE void toggleSelected(int row);
    /// Whether all that toggleSelected() is about are queued or selected.
    [[nodiscard]] Q_INVOKABLE bool selectedAreChosen(int row) const;
    /// Whether an action on the row is about others too.
    [[nodiscard]] Q_INVOKABLE bool isOneOfSeveral(int row) const;
    Q_INVOKABLE void revealSelected(int row) const;
    /// Drags the files out, with a card of this look at the pointer; returns when they have been let go.
    Q_INVOKABLE void drag(int row, const QColor &ground, const QColor &ink, const QFont &font);

    // What is about one row alone.
    /// What Return does.
    Q_INVOKABLE virtual void activate(int row) = 0;
    /// Plays it; pauses or resumes what is loaded.
    Q_INVOKABLE virtual void play(int row) = 0;
    Q_INVOKABLE void preparePlay() { m_model.playback().prepare(); }

Q_SIGNALS:
    void currentRowChanged();
    void selectedChanged();
    /// Rows are others: this is the one that belongs at the view's upper edge.
    void placed(double topRow);

protected:
    /// `markedRole` says whether a row is selected.
    MusicListModel(MarluneModel &model, int markedRole, QObject *parent);

    [[nodiscard]] virtual RowSelection &ownSelection() = 0;
    /// What letters look for.
    [[nodiscard]] virtual QString nameAt(int row) const = 0;
    /// The tracks that an action on the row is about.
    [[nodiscard]] virtual std::vector<const Track *> tracksAbout(int row) const = 0;
    /// What the file manager is to show of them.
    [[nodiscard]] virtual std::vector<std::filesystem::path> filesAbout(int row) const;

    /// So many of the listed tracks to each side of one that is played are played too: days of music.
    static constexpr int queueReach = 1000;

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

    [[nodiscard]] Order order() const;

    /// What the present order goes by.
    struct Place {
        QString artist;
        QString album;
        QString year;
        std::int64_t bytes = 0;
    };
    [[nodiscard]] QString landmarkOf(const Place &place) const;
    /// The rows that an action on this one is about.
    [[nodiscard]] std::vector<int> about(int row) const;
    /// The tracks that are queued, or on the device selected for a playlist.
    [[nodiscard]] const QSet<QUuid> &chosen() const;
    /// The selection follows rows that are put in and taken out. To be called before any view is there.
    void followSteps();
    /// Tells that these roles of all rows may be others; none: all roles.
    void renew(const QList<int> &roles);
    [[nodiscard]] MarluneModel &model() const { return m_model; }

private:
    /// Runs what changes the selection, and reports the change.
    template <typename Change> void select(const Change &change);
    [[nodiscard]] QSet<QUuid> idsAbout(int row) const;

    MarluneModel &m_model;
    int m_markedRole;
    TypeAhead m_typeAhead;
};
