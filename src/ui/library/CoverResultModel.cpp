#include "ui/library/CoverResultModel.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "media/pictures/Images.h"

#include <QPointer>

namespace {

constexpr int maxFetches = 2; ///< at a time
constexpr std::int64_t maxPreviewBytes = 2'000'000; ///< 500 pixels take a tenth of that

QString factsOf(const CoverCandidate &candidate)
{
    QStringList facts;
    const auto add = [&facts](const QString &fact) {
        if (!fact.trimmed().isEmpty()) {
            facts.append(Wording::shownName(fact));
        }
    };
    add(candidate.artist());
    add(candidate.firstReleaseDate.value_or(QString()));
    add(candidate.primaryType.value_or(QString()));
    if (candidate.score) {
        add(AppLocalizer::text(QStringLiteral("zgodność %1%").arg(*candidate.score)));
    }
    return facts.join(QStringLiteral(" · "));
}

} // namespace

CoverResultModel::CoverResultModel(CoverSearch &search, std::shared_ptr<CoverStore> covers, QObject *parent)
    : RowListModel(parent)
    , m_search(search)
    , m_covers(std::move(covers))
{
}

int CoverResultModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QHash<int, QByteArray> CoverResultModel::roleNames() const
{
    return {{TitleRole, "albumTitle"}, {FactsRole, "facts"}, {PictureRole, "picture"}, {AwaitedRole, "awaited"}};
}

QVariant CoverResultModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row &row = m_rows[std::size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return Wording::shownName(row.candidate.title);
    case FactsRole:
        return factsOf(row.candidate);
    case PictureRole:
        return row.state == Picture::There ? m_covers->nameOf(row.bytes) : QString();
    case AwaitedRole:
        return row.state == Picture::Unasked || row.state == Picture::Awaited;
    default:
        return {};
    }
}

void CoverResultModel::show(const std::vector<CoverCandidate> &candidates)
{
    m_exchange = std::make_unique<QObject>();
    m_waiting.clear();
    m_underWay = 0;
    beginResetModel();
    m_rows.clear();
    for (const CoverCandidate &candidate : candidates) {
        m_rows.push_back({.candidate = candidate});
    }
    endResetModel();
    m_covers->prune();
}

std::optional<CoverCandidate> CoverResultModel::candidate(int row) const
{
    return row >= 0 && row < rowCount() ? std::optional(m_rows[std::size_t(row)].candidate) : std::nullopt;
}

void CoverResultModel::wantPicture(int row)
{
    if (row >= 0 && row < rowCount() && m_rows[std::size_t(row)].state == Picture::Unasked) {
        m_rows[std::size_t(row)].state = Picture::Awaited;
        m_waiting.push_back(row);
        fetchNext();
    }
}

void CoverResultModel::fetchNext()
{
    while (m_underWay < maxFetches && !m_waiting.empty()) {
        const int row = m_waiting.front();
        m_waiting.pop_front();
        ++m_underWay;
        fetch(row);
    }
}

QCoro::Task<> CoverResultModel::fetch(int row)
{
    const QPointer<QObject> living(m_exchange.get()); // gone with these rows, and with the model
    const CoverCandidate candidate = m_rows[std::size_t(row)].candidate;
    QByteArray bytes;
    try {
        auto fetching = m_search.image(candidate, *m_exchange, maxPreviewBytes);
        bytes = co_await fetching;
    } catch (const std::exception &) {
        bytes.clear(); // the row says that there is no picture
    }
    if (!living) {
        co_return;
    }
    Row &shown = m_rows[std::size_t(row)];
    shown.bytes = bytes;
    shown.state = imageFacts(bytes) ? Picture::There : Picture::Absent;
    Q_EMIT dataChanged(index(row), index(row), {PictureRole, AwaitedRole});
    --m_underWay;
    fetchNext();
}
