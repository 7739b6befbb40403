// The order of texts that a file manager shows, and the search that goes with it.
//
// Digit runs compare by value and case is ignored, by the rules of the shown language. The language is one value
// for the whole process, as the C locale is; it may be changed on the UI thread at any time and is read by any.
#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace TextOrder {

enum class Language : std::uint8_t { Polish, English };

void setLanguage(Language language);
[[nodiscard]] Language language();
/// How numbers and units are written in that language; needs none of the system's locales.
[[nodiscard]] QLocale locale();

/// Negative, zero or positive, as a comes before, with or behind b. "a" and "A" come together.
[[nodiscard]] int compare(const QString &a, const QString &b);
/// Keys of the same language compare as their texts do; cheaper from a few comparisons a text upward.
[[nodiscard]] QCollatorSortKey key(const QString &text);

/// Whether `text` contains `part`, ignoring case and the way in which accents are composed.
[[nodiscard]] bool contains(const QString &text, const QString &part);
/// The form in which contains() compares, for texts that are searched often: contains(a, b) is the same as
/// folded(a).contains(folded(b)). No letter becomes two.
[[nodiscard]] QString folded(const QString &text);

/// Sorts stably by textOf(item), ascending, with one key an item.
template <typename Item, typename TextOf> void stableSort(std::vector<Item> &items, const TextOf &textOf)
{
    std::vector<QCollatorSortKey> keys;
    std::vector<std::size_t> order(items.size()); // keys are costly to move
    keys.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        keys.push_back(key(textOf(items[i])));
        order[i] = i;
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const std::size_t index : order) {
        sorted.push_back(std::move(items[index]));
    }
    items = std::move(sorted);
}

} // namespace TextOrder
