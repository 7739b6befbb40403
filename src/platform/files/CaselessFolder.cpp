#include "platform/files/CaselessFolder.h"

#include "platform/files/FolderItems.h"

#include <algorithm>

namespace {

QString caseless(const std::filesystem::path &name)
{
    return Files::text(name).toCaseFolded();
}

} // namespace

CaselessFolder::Names CaselessFolder::list() const
{
    Names names;
    for (const Files::FolderItem &item : Files::readableItemsOf(m_folder)) {
        names[caseless(item.name)].emplace_back(item.name);
    }
    return names;
}

std::vector<std::filesystem::path> CaselessFolder::named(const std::filesystem::path &name) const
{
    if (!m_names) {
        m_names = list();
    }
    std::vector<std::filesystem::path> items = m_names->value(caseless(name));
    std::sort(items.begin(), items.end(), [&name](const auto &a, const auto &b) {
        return std::pair(a != name, a.native()) < std::pair(b != name, b.native());
    });
    std::transform(items.begin(), items.end(), items.begin(), [this](const auto &item) { return m_folder / item; });
    return items;
}
