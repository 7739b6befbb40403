#include "storage/DiskSpelling.h"

#include "storage/PathSafety.h"

#include "platform/files/FolderItems.h"

#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

using Status = struct stat;

bool hasSameNumber(const Status &a, const Status &b)
{
    return a.st_ino == b.st_ino;
}

/// Drivers in user space give each spelling of a name a number of its own.
bool looksTheSame(const Status &a, const Status &b)
{
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool isSame(
    const std::filesystem::path &one, const std::filesystem::path &other, bool (*same)(const Status &, const Status &))
{
    Status a {};
    Status b {};
    return ::lstat(one.c_str(), &a) == 0 && ::lstat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev && same(a, b);
}

} // namespace

namespace Storage {

DiskSpelling::DiskSpelling(std::filesystem::path root, Volumes::NameRules rules)
    : m_root(std::move(root))
    , m_rules(rules)
{
}

std::filesystem::path DiskSpelling::of(const std::filesystem::path &relative) const
{
    if (m_rules == Volumes::NameRules::Posix) {
        return relative;
    }
    std::filesystem::path result;
    for (const std::filesystem::path &piece : relative) {
        result /= pieceOf(result, piece);
    }
    return result;
}

void DiskSpelling::add(const std::filesystem::path &relative)
{
    std::filesystem::path folder;
    for (const std::filesystem::path &piece : relative) {
        if (m_rules != Volumes::NameRules::Posix && known(folder, piece) != piece.native()) {
            namesIn(folder).emplace(volumeKey(piece, m_rules), piece);
        }
        folder /= piece;
    }
}

std::filesystem::path DiskSpelling::pieceOf(
    const std::filesystem::path &folder, const std::filesystem::path &piece) const
{
    if (const std::optional<std::string> name = known(folder, piece)) {
        return *name;
    }
    if (Files::kindOf(m_root / folder / piece) == Files::Kind::None) {
        return piece;
    }
    m_folders.erase(folder);
    if (const std::optional<std::string> name = known(folder, piece)) {
        return *name;
    }
    // There and not listed, so it is one of these; a driver can remember it by this spelling as it was a second ago.
    const auto [begin, end] = namesIn(folder).equal_range(volumeKey(piece, m_rules));
    return std::distance(begin, end) == 1 ? std::filesystem::path(begin->second) : piece;
}

/// The disk decides what is the same name to it; its table of letters is not ours.
std::optional<std::string> DiskSpelling::known(
    const std::filesystem::path &folder, const std::filesystem::path &piece) const
{
    const auto [begin, end] = namesIn(folder).equal_range(volumeKey(piece, m_rules));
    if (std::any_of(begin, end, [&](const auto &entry) { return entry.second == piece; })) {
        return piece;
    }
    const std::filesystem::path place = m_root / folder;
    for (const auto &same : {hasSameNumber, looksTheSame}) {
        const auto found = std::find_if(
            begin, end, [&](const auto &entry) { return isSame(place / entry.second, place / piece, same); });
        if (found != end) {
            return found->second;
        }
    }
    return std::nullopt;
}

DiskSpelling::Names &DiskSpelling::namesIn(const std::filesystem::path &folder) const
{
    const auto [entry, isNew] = m_folders.try_emplace(folder);
    const std::filesystem::path place = m_root / folder;
    if (isNew && Files::kindOf(place) == Files::Kind::Folder) {
        for (Files::FolderItem &item : Files::itemsOf(Files::openFolder(place), Files::Undescribed::None)) {
            entry->second.emplace(volumeKey(item.name, m_rules), std::move(item.name));
        }
    }
    return entry->second;
}

} // namespace Storage
