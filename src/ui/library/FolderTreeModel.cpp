#include "ui/library/FolderTreeModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/files/PathText.h"

#include <QPointer>

#include <algorithm>
#include <utility>

/// What a job makes, for the moment in which it began.
struct FolderTreeModel::Built {
    std::shared_ptr<const FolderTree> base; ///< the tree before, if there was one
    Shown shown; ///< without rows and what is open
    bool isOnDevice = false;
    std::shared_ptr<const FolderTree> tree;
    std::vector<Node> before; ///< places in the base
};

FolderTreeModel::FolderTreeModel(MarluneModel &model, QObject *parent)
    : MusicListModel(model, MarkedRole, parent)
{
    for (const auto signal :
        {&MarluneModel::tracksChanged, &MarluneModel::libraryOnDeviceChanged, &MarluneModel::deviceChanged}) {
        connect(&model, signal, this, [this] {
            m_tracksMayDiffer = true;
            m_isOutdated = true;
            m_change.start();
        });
    }
    connect(&model, &MarluneModel::browsingChanged, this, [this] {
        m_isOutdated = true;
        m_change.start();
    });
    connect(&model, &MarluneModel::sectionChanged, this, &FolderTreeModel::refreshIfShown);
    connect(&model, &MarluneModel::viewModeChanged, this, &FolderTreeModel::refreshIfShown);
    m_selectionChange.follow(model, &MarluneModel::selectionChanged);
    for (const auto signal : {&Playback::currentChanged, &Playback::playingChanged}) {
        connect(&model.playback(), signal, this, [this] {
            if (isShown()) {
                refreshPlaying();
                renew({PlayingRole});
            } else {
                m_isOutdated = true;
            }
        });
    }
    refreshIfShown();
}

int FolderTreeModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.rows.size());
}

QHash<int, QByteArray> FolderTreeModel::roleNames() const
{
    return {{NameRole, "name"}, {DepthRole, "depth"}, {FolderRole, "isFolder"}, {OpenRole, "open"},
        {CountRole, "trackCount"}, {ChosenRole, "chosen"}, {PlayingRole, "playing"}, {MarkedRole, "marked"},
        {StateRole, "stateText"}};
}

QVariant FolderTreeModel::data(const QModelIndex &index, int role) const
{
    const std::optional<Node> shown = node(index.isValid() ? index.row() : -1);
    if (!shown) {
        return {};
    }
    const FolderNode &about = tree()[*shown];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return name(*shown);
    case DepthRole:
        return int(about.depth);
    case FolderRole:
        return about.isFolder();
    case OpenRole:
        return about.isFolder() && m_shown.folders.isOpen(*shown);
    case CountRole:
        return int(m_shown.folders.listedIn(*shown));
    case ChosenRole:
        return int(m_shown.folders.chosenIn(*shown));
    case PlayingRole:
        return m_playing >= *shown && m_playing < about.end;
    case MarkedRole:
        return m_shown.selection.contains(index.row());
    case StateRole:
        return state(*shown);
    default:
        return {};
    }
}

std::optional<FolderTreeModel::Node> FolderTreeModel::node(int row) const
{
    if (row < 0 || row >= rowCount()) {
        return std::nullopt;
    }
    const Node node = m_shown.rows[std::size_t(row)];
    return node < tree().size() ? std::optional(node) : std::nullopt;
}

std::optional<QString> FolderTreeModel::nodeId(int row) const
{
    const std::optional<Node> shown = node(row);
    return shown ? std::optional(tree().id(*shown)) : std::nullopt;
}

QString FolderTreeModel::name(Node node) const
{
    if (node == 0 && !m_shown.root) {
        return AppLocalizer::text(QStringLiteral("Pliki na Macu"));
    }
    return Wording::shownName(tree()[node].name);
}

QString FolderTreeModel::state(Node node) const
{
    const QString level = QString::number(tree()[node].depth + 1);
    if (!tree()[node].isFolder()) {
        return AppLocalizer::text(QStringLiteral("Poziom ") + level);
    }
    const QString count = QString::number(m_shown.folders.listedIn(node));
    return m_shown.folders.isOpen(node)
        ? AppLocalizer::text(QStringLiteral("Poziom ") + level + QStringLiteral(" · rozwinięty · Utwory: ") + count)
        : AppLocalizer::text(QStringLiteral("Poziom ") + level + QStringLiteral(" · zwinięty · Utwory: ") + count);
}

std::optional<std::filesystem::path> FolderTreeModel::root() const
{
    const std::optional<Device> &device = model().device();
    return model().libraryOnDevice() && device ? std::optional(device->root) : std::nullopt;
}

std::vector<bool> FolderTreeModel::chosenTracks() const
{
    const QSet<QUuid> &ids = chosen();
    std::vector<bool> result;
    if (!ids.isEmpty()) {
        const TrackIdentities &tracks = *m_shown.identities;
        result.resize(tracks.size());
        std::transform(tracks.begin(), tracks.end(), result.begin(),
            [&ids](const TrackIdentity &track) { return ids.contains(track.id); });
    }
    return result;
}

std::vector<bool> FolderTreeModel::listedTracks() const
{
    return model().trackMatches()->places;
}

bool FolderTreeModel::isShown() const
{
    return model().section() == Section::Music && viewModeFromText(model().viewMode()) == ViewMode::Folders;
}

void FolderTreeModel::refreshIfShown()
{
    if (m_isOutdated && isShown()) {
        refresh();
    }
}

bool FolderTreeModel::isCurrent(const Shown &shown) const
{
    return shown.language == TextOrder::language() && shown.root == root()
        && shown.identities == model().index()->identities();
}

void FolderTreeModel::refresh()
{
    const bool isOtherSide = m_isOnDevice != model().libraryOnDevice() || m_shown.root != root();
    if (m_shown.folders.tree() && (isOtherSide || model().activeTracks().empty())) {
        putAside();
    }
    m_isOnDevice = model().libraryOnDevice();
    if (m_isBuilding) { // what lands is held against the tracks of then
        return;
    }
    m_isOutdated = false;
    const bool isDifferent = std::exchange(m_tracksMayDiffer, false) || m_shown.language != TextOrder::language();
    if (model().activeTracks().empty()) {
        return;
    }
    if (m_shown.folders.tree() && (!isDifferent || isCurrent(m_shown))) {
        list(places());
    } else {
        runBuilding();
    }
}

/// Shows nothing: the rows are another side's, or there are no tracks.
void FolderTreeModel::putAside()
{
    beginResetModel();
    m_aside[m_isOnDevice ? 1 : 0] = std::exchange(m_shown, {});
    m_playing = FolderNode::none;
    endResetModel();
    Q_EMIT selectedChanged();
    Q_EMIT currentRowChanged();
}

QCoro::Task<> FolderTreeModel::runBuilding()
{
    const QPointer<FolderTreeModel> self(this);
    m_isBuilding = true;
    Built begun {.base = m_shown.folders.tree(), .shown = {}, .isOnDevice = m_isOnDevice, .tree = {}, .before = {}};
    begun.shown.root = root();
    begun.shown.language = TextOrder::language();
    if (!begun.base && aside().root == begun.shown.root) { // those at another place are of no use
        begun.base = aside().folders.tree();
    }
    begun.shown.identities = model().index()->identities();
    auto work = [tracks = model().sharedTracks(), built = std::move(begun)]() mutable {
        PathList files;
        for (const Track &track : *tracks) {
            files.add(track.url);
        }
        tracks.reset(); // who changes them now need not copy them
        const std::optional<std::filesystem::path> &root = built.shown.root;
        built.tree = std::make_shared<const FolderTree>(files, root, root ? Files::name(*root) : QString());
        if (built.base) {
            built.before = built.tree->placesIn(*built.base);
        }
        return std::move(built);
    };
    auto outcome = co_await attempt(work);
    if (!self) {
        co_return;
    }
    m_isBuilding = false;
    if (outcome.value && outcome.value->isOnDevice == model().libraryOnDevice() && isCurrent(outcome.value->shown)) {
        land(*outcome.value);
        BackgroundJobs::discard(std::make_shared<Built>(std::move(*outcome.value))); // with the tree before
    } else {
        m_tracksMayDiffer = true;
        m_isOutdated = outcome.value.has_value();
        refreshIfShown();
    }
}

void FolderTreeModel::land(const Built &built)
{
    m_isOutdated = false;
    m_tracksMayDiffer = false;
    Shown old = m_shown.folders.tree() ? m_shown : std::exchange(aside(), {});
    const bool hasBase = built.base && old.folders.tree() == built.base;
    if (!hasBase) { // put aside meanwhile, as that of another device
        old = {};
    }
    const std::vector<Node> nothing;
    const std::vector<Node> &nodesBefore = hasBase ? built.before : nothing;
    std::vector<Node> now(hasBase ? built.base->size() : 0, FolderNode::none); // of each node of the old tree
    for (Node node = 0; node < nodesBefore.size(); ++node) {
        if (nodesBefore[node] != FolderNode::none) {
            now[nodesBefore[node]] = node;
        }
    }
    const auto move = [&now](std::vector<Node> &rows) {
        for (Node &row : rows) {
            row = row < now.size() ? now[row] : FolderNode::none;
        }
    };
    Places before {.rows = old.rows, .selection = old.selection, .topRow = old.topRow};
    move(before.rows);
    if (old.beforeSearch) {
        move(old.beforeSearch->rows);
    }
    m_shown.folders = std::move(old.folders);
    m_shown.folders.setTree(built.tree, nodesBefore);
    m_shown.beforeSearch = std::move(old.beforeSearch);
    m_shown.identities = built.shown.identities;
    m_shown.root = built.shown.root;
    m_shown.language = built.shown.language;
    for (std::size_t i = 0; i < m_shown.rows.size(); ++i) { // those that are gone get numbers of no node
        m_shown.rows[i] = before.rows[i] != FolderNode::none ? before.rows[i] : tree().size() + Node(i);
    }
    list(std::move(before));
}

FolderTreeModel::Places FolderTreeModel::places() const
{
    return {.rows = m_shown.rows, .selection = m_shown.selection, .topRow = m_shown.topRow};
}

/// Lists what the filters and the search leave. After a search all is as it was before it, but for what the user has
/// selected meanwhile.
void FolderTreeModel::list(Places before)
{
    const QString search = std::exchange(m_search, model().search());
    if (search.isEmpty() && !m_search.isEmpty()) {
        m_shown.beforeSearch = before;
    }
    m_shown.folders.setListed(listedTracks(), !m_search.isEmpty());
    m_shown.folders.setChosen(chosenTracks());
    refreshPlaying();
    const std::optional<Places> kept
        = m_search.isEmpty() ? std::exchange(m_shown.beforeSearch, std::nullopt) : std::nullopt;
    const bool selects = before.selection.count() > 0;
    changeRowsTo(m_shown.folders.visible(), kept && !selects ? *kept : std::move(before));
    if (kept || search != m_search) {
        Q_EMIT placed(kept ? topAfter(*kept) : 0);
    }
}

/// What was selected, current and at the top stays so where it is still there.
void FolderTreeModel::changeRowsTo(const std::vector<Node> &wanted, Places before)
{
    const bool wasEmpty = m_shown.rows.empty();
    const bool inSteps = changeInSteps(m_shown.rows, wanted, [](Node node) { return node; });
    if (!inSteps) {
        exchangeRows(m_shown.rows, wanted);
    }
    follow(before);
    renew({});
    Q_EMIT selectedChanged();
    Q_EMIT currentRowChanged();
    if (wasEmpty || !inSteps) {
        Q_EMIT placed(topAfter(before));
    }
}

void FolderTreeModel::follow(const Places &before)
{
    RowSelection &selection = m_shown.selection;
    std::vector<int> newRows(before.rows.size());
    std::transform(before.rows.begin(), before.rows.end(), newRows.begin(), [this](Node node) { return rowOf(node); });
    selection = before.selection;
    selection.remap(newRows, rowCount());
    const auto current = std::size_t(before.selection.current());
    if (current < newRows.size() && newRows[current] < 0 && before.rows[current] != FolderNode::none) {
        selection.setCurrent(rowNear(before.rows[current]));
    }
    if (selection.current() < 0) {
        selection.setCurrent(0); // where the keyboard comes in
    }
}

double FolderTreeModel::topAfter(const Places &before) const
{
    const auto top = std::size_t(std::max(0.0, before.topRow));
    for (std::size_t i = top; i < before.rows.size(); ++i) {
        if (const int now = rowOf(before.rows[i]); now >= 0) {
            return now + (i == top ? before.topRow - double(top) : 0);
        }
    }
    return 0;
}

int FolderTreeModel::rowOf(Node node) const
{
    const auto found = std::lower_bound(m_shown.rows.begin(), m_shown.rows.end(), node);
    return found != m_shown.rows.end() && *found == node ? int(found - m_shown.rows.begin()) : -1;
}

int FolderTreeModel::rowNear(Node node) const
{
    return rowOf(m_shown.folders.nearestVisible(node));
}

void FolderTreeModel::refreshChosen()
{
    if (!isShown()) {
        m_isOutdated = true;
    } else if (m_shown.folders.tree()) {
        m_shown.folders.setChosen(chosenTracks());
        renew({ChosenRole});
    }
}

void FolderTreeModel::refreshPlaying()
{
    const Playback &playback = model().playback();
    m_playing = FolderNode::none;
    if (!playback.playing() || !m_shown.folders.tree()) {
        return;
    }
    const TrackIdentities &tracks = *m_shown.identities;
    const auto heard = std::find_if(tracks.begin(), tracks.end(),
        [&id = playback.current()->id](const TrackIdentity &track) { return track.id == id; });
    for (Node node = 0; heard != tracks.end() && m_playing == FolderNode::none && node < tree().size(); ++node) {
        if (tree()[node].track == std::uint32_t(heard - tracks.begin())) {
            m_playing = node;
        }
    }
}
