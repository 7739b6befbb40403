#include "ui/lists/RowChanges.h"

#include <QHash>

#include <algorithm>

namespace RowChanges {

namespace {

QHash<QString, int> positions(const std::vector<QString> &ids)
{
    QHash<QString, int> result;
    result.reserve(qsizetype(ids.size()));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        result.insert(ids[i], int(i));
    }
    return result;
}

/// The runs of `ids` that `known` lacks.
std::vector<Step> runsOutside(const std::vector<QString> &ids, const QHash<QString, int> &known, Step::Kind kind)
{
    std::vector<Step> runs;
    for (int i = 0; i < int(ids.size()); ++i) {
        if (known.contains(ids[std::size_t(i)])) {
            continue;
        }
        if (!runs.empty() && runs.back().first + runs.back().count == i) {
            ++runs.back().count;
        } else {
            runs.push_back({kind, i, 1});
        }
    }
    return runs;
}

} // namespace

std::optional<std::vector<Step>> plan(
    const std::vector<QString> &before, const std::vector<QString> &after, std::size_t most)
{
    const QHash<QString, int> old = positions(before);
    const QHash<QString, int> wanted = positions(after);
    if (std::size_t(old.size()) != before.size() || std::size_t(wanted.size()) != after.size()) {
        return std::nullopt;
    }
    int last = -1;
    for (const QString &id : after) {
        if (const auto place = old.constFind(id); place != old.constEnd()) {
            if (*place < last) {
                return std::nullopt;
            }
            last = *place;
        }
    }
    std::vector<Step> steps = runsOutside(before, wanted, Step::Kind::Remove);
    std::reverse(steps.begin(), steps.end());
    const std::vector<Step> insertions = runsOutside(after, old, Step::Kind::Insert);
    steps.insert(steps.end(), insertions.begin(), insertions.end());
    if (steps.size() > most) {
        return std::nullopt;
    }
    return steps;
}

} // namespace RowChanges
