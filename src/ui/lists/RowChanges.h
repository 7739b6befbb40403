// The steps that turn one list of distinct identities into another.
#pragma once

#include <QHash>
#include <QString>

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace RowChanges {

/// `count` neighbouring rows from `first` on; positions are those at the moment of the step.
struct Step {
    enum class Kind : std::uint8_t { Remove, Insert };
    Kind kind;
    int first = 0;
    int count = 0;

    bool operator==(const Step &) const = default;
};

template <typename Id> using Positions = QHash<Id, int>;

template <typename Id> Positions<Id> positions(std::span<const Id> ids)
{
    Positions<Id> result;
    result.reserve(qsizetype(ids.size()));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        result.insert(ids[i], int(i));
    }
    return result;
}

/// The runs of `ids` that `known` lacks, as rows from `offset` on.
template <typename Id>
std::vector<Step> runsOutside(std::span<const Id> ids, const Positions<Id> &known, Step::Kind kind, int offset)
{
    std::vector<Step> runs;
    for (int i = 0; i < int(ids.size()); ++i) {
        if (known.contains(ids[std::size_t(i)])) {
            continue;
        }
        if (!runs.empty() && runs.back().first + runs.back().count == i + offset) {
            ++runs.back().count;
        } else {
            runs.push_back({kind, i + offset, 1});
        }
    }
    return runs;
}

/// Removals from the end to the start, then insertions from the start to the end. Absent where rows that stay changed
/// places among each other, an identity occurs twice among what changes, or more than `most` steps are needed.
template <typename Id>
std::optional<std::vector<Step>> plan(const std::vector<Id> &before, const std::vector<Id> &after, std::size_t most)
{
    const auto head = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const std::size_t same = std::size_t(head.first - before.begin());
    const auto end = std::mismatch(before.rbegin(), std::make_reverse_iterator(head.first), after.rbegin(),
        std::make_reverse_iterator(head.second));
    const std::span<const Id> was(head.first, end.first.base());
    const std::span<const Id> is(head.second, end.second.base());
    const Positions<Id> old = positions(was);
    const Positions<Id> wanted = positions(is);
    if (std::size_t(old.size()) != was.size() || std::size_t(wanted.size()) != is.size()) {
        return std::nullopt;
    }
    int last = -1;
    for (const Id &id : is) {
        if (const auto place = old.constFind(id); place != old.constEnd()) {
            if (*place < last) {
                return std::nullopt;
            }
            last = *place;
        }
    }
    std::vector<Step> steps = runsOutside(was, wanted, Step::Kind::Remove, int(same));
    std::reverse(steps.begin(), steps.end());
    const std::vector<Step> insertions = runsOutside(is, old, Step::Kind::Insert, int(same));
    steps.insert(steps.end(), insertions.begin(), insertions.end());
    if (steps.size() > most) {
        return std::nullopt;
    }
    return steps;
}

} // namespace RowChanges
