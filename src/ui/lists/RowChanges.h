// The steps that turn one list of distinct identities into another.
#pragma once

#include <QHashFunctions>
#include <QString>

#include <algorithm>
#include <bit>
#include <cstdint>
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

/// Where each identity of a list is. A flat table of places: lists of 100,000 rows are looked up at every letter typed.
template <typename Id> class Positions {
public:
    /// Looks into `ids` as long as it lives.
    explicit Positions(std::span<const Id> ids)
        : m_ids(ids)
        , m_slots(std::bit_ceil(ids.size() * 2 + 1), -1)
    {
        for (int i = 0; i < int(ids.size()); ++i) {
            int &slot = m_slots[slotOf(ids[std::size_t(i)])];
            m_areDistinct = m_areDistinct && slot < 0;
            slot = i;
        }
    }

    /// The last place, or -1.
    [[nodiscard]] int operator()(const Id &id) const { return m_slots[slotOf(id)]; }
    [[nodiscard]] bool areDistinct() const { return m_areDistinct; }

private:
    /// That of the identity, or the free one for it.
    [[nodiscard]] std::size_t slotOf(const Id &id) const
    {
        const std::size_t last = m_slots.size() - 1;
        const std::uint64_t mixed = std::uint64_t(qHash(id)) * 0x9E3779B97F4A7C15U; // neighbours come apart
        std::size_t slot = std::size_t(mixed >> 32) & last;
        while (m_slots[slot] >= 0 && !(m_ids[std::size_t(m_slots[slot])] == id)) {
            slot = (slot + 1) & last;
        }
        return slot;
    }

    std::span<const Id> m_ids;
    std::vector<int> m_slots;
    bool m_areDistinct = true;
};

/// Appends the runs of `ids` that `known` lacks, as rows from `offset` on. False where there would be more than `most`
/// steps.
template <typename Id>
bool appendRuns(std::vector<Step> &steps, std::size_t most, std::span<const Id> ids, const Positions<Id> &known,
    Step::Kind kind, int offset)
{
    const std::size_t before = steps.size();
    for (int i = 0; i < int(ids.size()); ++i) {
        if (known(ids[std::size_t(i)]) >= 0) {
            continue;
        }
        if (steps.size() > before && steps.back().first + steps.back().count == i + offset) {
            ++steps.back().count;
        } else if (steps.size() == most) {
            return false;
        } else {
            steps.push_back({kind, i + offset, 1});
        }
    }
    return true;
}

/// Removals from the end to the start, then insertions from the start to the end. Absent where rows that stay changed
/// places among each other, an identity occurs twice among what changes, or more than `most` steps are needed.
template <typename Id>
std::optional<std::vector<Step>> plan(const std::vector<Id> &before, const std::vector<Id> &after, std::size_t most)
{
    const auto head = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const int same = int(head.first - before.begin());
    const auto end = std::mismatch(before.rbegin(), std::make_reverse_iterator(head.first), after.rbegin(),
        std::make_reverse_iterator(head.second));
    const std::span<const Id> was(head.first, end.first.base());
    const std::span<const Id> is(head.second, end.second.base());
    std::vector<Step> removals;
    std::vector<Step> insertions;
    const auto remove = [&](const Positions<Id> &wanted) {
        return wanted.areDistinct() && appendRuns(removals, most, was, wanted, Step::Kind::Remove, same);
    };
    // What is too much is mostly seen with the table of the shorter one alone.
    std::optional<Positions<Id>> wanted;
    if (is.size() <= was.size() && !remove(wanted.emplace(is))) {
        return std::nullopt;
    }
    const Positions<Id> old(was);
    if (!old.areDistinct() || !appendRuns(insertions, most, is, old, Step::Kind::Insert, same)) {
        return std::nullopt;
    }
    if (!wanted && !remove(wanted.emplace(is))) {
        return std::nullopt;
    }
    int last = -1;
    for (const Id &id : is) {
        if (const int place = old(id); place >= 0) {
            if (place < last) {
                return std::nullopt;
            }
            last = place;
        }
    }
    if (removals.size() + insertions.size() > most) {
        return std::nullopt;
    }
    std::vector<Step> steps(removals.rbegin(), removals.rend());
    steps.insert(steps.end(), insertions.begin(), insertions.end());
    return steps;
}

} // namespace RowChanges
