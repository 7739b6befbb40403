// The steps that turn one list of distinct identities into another.
#pragma once

#include <QString>

#include <optional>
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

/// Removals from the end to the start, then insertions from the start to the end. Absent where rows that stay changed
/// places among each other, an identity occurs twice, or more than `most` steps are needed.
[[nodiscard]] std::optional<std::vector<Step>> plan(
    const std::vector<QString> &before, const std::vector<QString> &after, std::size_t most);

} // namespace RowChanges
