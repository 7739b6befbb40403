#include "quality/QualityIssue.h"

#include "platform/files/Files.h"
#include "platform/text/TextOrder.h"

#include <algorithm>
#include <string_view>

QString qualityKindText(QualityKind kind)
{
    switch (kind) {
    case QualityKind::Covers:
        return QStringLiteral("Okładki");
    case QualityKind::Tags:
        return QStringLiteral("Tagi");
    case QualityKind::Files:
        return QStringLiteral("Pliki");
    case QualityKind::Duplicates:
        return QStringLiteral("Duplikaty");
    }
    Q_UNREACHABLE();
}

QString QualityIssue::id() const
{
    std::vector<std::string_view> paths;
    paths.reserve(tracks.size());
    for (const Track &track : tracks) {
        paths.push_back(track.url.native());
    }
    std::sort(paths.begin(), paths.end());
    QString id = qualityKindText(kind);
    for (const std::string_view path : paths) {
        id += QChar(u'\0') + Files::text(path);
    }
    return id;
}

void sortIssues(std::vector<QualityIssue> &issues)
{
    TextOrder::stableSort(issues,
        [](const QualityIssue &issue) { return QString(qualityKindText(issue.kind) + issue.title + issue.id()); });
}
