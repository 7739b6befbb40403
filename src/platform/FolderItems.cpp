#include "platform/FolderItems.h"

#include "platform/Files.h"

#include <algorithm>

namespace {

QString caseless(const std::filesystem::path &name)
{
    return Files::text(name).toCaseFolded();
}

} // namespace

FolderItems::Names FolderItems::list() const
{
    Names names;
    std::error_code failure;
    std::filesystem::directory_iterator entry(m_folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::filesystem::path name = entry->path().filename();
        names[caseless(name)].push_back(std::move(name));
    }
    return names;
}

std::vector<std::filesystem::path> FolderItems::named(const std::filesystem::path &name) const
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
