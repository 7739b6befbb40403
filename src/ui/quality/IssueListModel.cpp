#include "ui/quality/IssueListModel.h"

#include "ui/words/Localization.h"

#include "platform/files/Files.h"

#include <algorithm>
#include <utility>

namespace {

/// A page has no room for the hundred copies of one file.
constexpr std::size_t maxPlaces = 4;

QString placesOf(const QualityIssue &issue)
{
    if (issue.kind == QualityKind::Covers) {
        return {};
    }
    QStringList places;
    for (std::size_t i = 0; i < std::min(issue.tracks.size(), maxPlaces); ++i) {
        places.append(Files::text(issue.tracks[i].url));
    }
    if (issue.tracks.size() > maxPlaces) {
        places.append(AppLocalizer::text(QStringLiteral("i jeszcze %1").arg(issue.tracks.size() - maxPlaces)));
    }
    return places.join(u'\n');
}

} // namespace

int IssueListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_issues.size());
}

QHash<int, QByteArray> IssueListModel::roleNames() const
{
    return {{KindRole, "kind"}, {TitleRole, "title"}, {DetailRole, "detail"}, {HasPictureRole, "hasPicture"},
        {PlacesRole, "places"}};
}

std::shared_ptr<const QualityIssue> IssueListModel::issue(int row) const
{
    return row >= 0 && row < int(m_issues.size()) ? m_issues[std::size_t(row)] : nullptr;
}

QVariant IssueListModel::data(const QModelIndex &index, int role) const
{
    const std::shared_ptr<const QualityIssue> shown = issue(index.isValid() ? index.row() : -1);
    if (!shown) {
        return {};
    }
    switch (role) {
    case KindRole:
        return qualityKindText(shown->kind);
    case Qt::DisplayRole:
    case TitleRole:
        // A duplicate's title tells their number too; that of an album or a track is a name, which is not translated.
        return shown->kind == QualityKind::Duplicates ? AppLocalizer::text(shown->title) : shown->title;
    case DetailRole:
        return AppLocalizer::text(shown->detail);
    case HasPictureRole:
        return std::any_of(
            shown->tracks.begin(), shown->tracks.end(), [](const Track &track) { return track.artwork.has_value(); });
    case PlacesRole:
        return placesOf(*shown);
    default:
        return {};
    }
}

void IssueListModel::show(Issues issues)
{
    if (issues == m_issues) { // the very same findings; their ids are long
        return;
    }
    if (!changeRows(m_issues, issues, [](const auto &issue) { return issue->id(); })) {
        return;
    }
    const Issues before = std::exchange(m_issues, std::move(issues));
    for (int row = 0; row < int(m_issues.size()); ++row) {
        const QualityIssue &was = *before[std::size_t(row)];
        const QualityIssue &is = *m_issues[std::size_t(row)];
        if (was.title != is.title || was.detail != is.detail) {
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}
