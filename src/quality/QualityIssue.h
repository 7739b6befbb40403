// One thing that was found in a collection, for the user to act on.
#pragma once

#include "library/Track.h"

#include <vector>

/// The groups of findings; each stands for itself in records and on the page.
namespace QualityKind {

inline const QString covers = QStringLiteral("Okładki");
inline const QString tags = QStringLiteral("Tagi");
inline const QString files = QStringLiteral("Pliki");
inline const QString duplicates = QStringLiteral("Duplikaty");

} // namespace QualityKind

struct QualityIssue {
    QString kind; ///< one of QualityKind
    QString title; ///< the album or track that it is about
    QString detail; ///< the finding, for the user
    std::vector<Track> tracks; ///< those concerned

    bool operator==(const QualityIssue &) const = default;

    /// Identity in lists: the kind and the sorted paths of the tracks, joined by NUL.
    [[nodiscard]] QString id() const;
};

/// Orders by kind, title and identity, as a file manager orders texts.
void sortIssues(std::vector<QualityIssue> &issues);
