#include "themes/Themes.h"

#include "platform/files/FolderItems.h"
#include "platform/text/TextOrder.h"

#include <algorithm>
#include <system_error>

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
    try {
        for (const Files::FolderItem &item : Files::itemsOf(Files::openFolder(folder))) {
            if (item.kind != Files::Kind::Link && Files::extension(item.name).toLower() == QLatin1String("cfg")) {
                themes.push_back({folder / item.name});
            }
        }
    } catch (const std::system_error &) {
        return {}; // no folder, a link to one, or one that cannot be read
    }
    // By bytes first: names that differ in case alone would otherwise be in the disk's own, accidental order.
    std::sort(themes.begin(), themes.end(), [](const Theme &a, const Theme &b) { return a.url < b.url; });
    TextOrder::stableSort(themes, [](const Theme &theme) { return theme.name(); });
    return themes;
}

} // namespace Storage
