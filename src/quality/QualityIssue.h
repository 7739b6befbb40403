// One thing that was found in a collection, for the user to act on.
#pragma once

#include "library/Track.h"

#include <array>
#include <cstdint>
#include <vector>

/// The groups of findings.
enum class QualityKind : std::uint8_t { Covers, Tags, Files, Duplicates };
inline constexpr std::array allQualityKinds {
    QualityKind::Covers, QualityKind::Tags, QualityKind::Files, QualityKind::Duplicates};
/// The text that stands for the group in records and on the page.
[[nodiscard]] QString qualityKindText(QualityKind kind);

struct QualityIssue {
    QualityKind kind = QualityKind::Covers;
    QString title; ///< the album or track that it is about
    QString detail; ///< the finding, for the user
    std::vector<Track> tracks; ///< those concerned

    bool operator==(const QualityIssue &) const = default;

    /// Identity in lists: the kind's text and the sorted paths of the tracks, joined by NUL.
    [[nodiscard]] QString id() const;
};

/// Orders by kind, title and identity, as a file manager orders texts.
void sortIssues(std::vector<QualityIssue> &issues);
