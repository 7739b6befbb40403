#include "platform/files/CaselessFolder.h"

#include "platform/files/FolderItems.h"

#include <algorithm>

namespace {

QString caseless(const std::filesystem::path &name)
{
    return Files::text(name).toCaseFolded();
}

} // namespace

CaselessFolder::CaselessFolder(std::filesystem::path folder, const std::vector<std::string> &names)
    : m_folder(std::move(folder))
{
    m_names.emplace();
    for (const std::string &name : names) {
        (*m_names)[caseless(name)].emplace_back(name);
    }
}

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
    if (m_names->isEmpty()) {
        return {};
    }
    std::vector<std::filesystem::path> items = m_names->value(caseless(name));
    std::sort(items.begin(), items.end(), [&name](const auto &a, const auto &b) {
        return std::pair(a != name, a.native()) < std::pair(b != name, b.native());
    });
    std::transform(items.begin(), items.end(), items.begin(), [this](const auto &item) { return m_folder / item; });
    return items;
}
