// The themes installed on a device. The firmware keeps each as one `.cfg` file in `.rockbox/themes`, a text that points
// at the theme's other files.
//
// Blocking; no state; any thread but the UI's.
#pragma once

#include <QString>

#include <filesystem>
#include <vector>

struct Theme {
    std::filesystem::path url; ///< the `.cfg` file

    bool operator==(const Theme &) const = default;

    /// The file's path as text: the key under which all that is known of the theme is kept.
    [[nodiscard]] QString id() const;
    /// The name shown: the file's, without its extension.
    [[nodiscard]] QString name() const;
};

namespace Storage {

/// The themes of the device (or any folder with a `.rockbox`) at `root`, by name, in the file manager's order. Links
/// are no themes. Empty when there is nothing to read; never fails.
[[nodiscard]] std::vector<Theme> themes(const std::filesystem::path &root);

} // namespace Storage
