#include "themes/Themes.h"

#include "storage/PathSafety.h"

#include "platform/Files.h"
#include "platform/TextOrder.h"

#include <algorithm>

QString Theme::id() const
{
    return Files::text(url);
}

QString Theme::name() const
{
    return Files::baseName(url);
}

namespace Storage {

std::vector<Theme> themes(const std::filesystem::path &root)
{
    const std::filesystem::path folder = root / ".rockbox" / "themes";
    std::vector<Theme> themes;
    if (isSymbolicLink(folder)) {
        return themes;
    }
    std::error_code failure;
    std::filesystem::directory_iterator entry(folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code unknown; // what cannot be queried counts as no link
        if (Files::extension(entry->path()).toLower() == QLatin1String("cfg") && !entry->is_symlink(unknown)) {
            themes.push_back({entry->path()});
        }
    }
    // By bytes first: names that differ in case alone would else stand in the disk's own, accidental order.
    std::sort(themes.begin(), themes.end(), [](const Theme &a, const Theme &b) { return a.url < b.url; });
    TextOrder::stableSort(themes, [](const Theme &theme) { return theme.name(); });
    return themes;
}

} // namespace Storage
