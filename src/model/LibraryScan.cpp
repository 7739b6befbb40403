#include "model/LibraryScan.h"

#include "storage/PathSafety.h"

#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 13> audioExtensions {
    "mp3", "flac", "m4a", "aac", "ogg", "opus", "wav", "aiff", "aif", "alac", "ape", "wv", "mpc"};

constexpr std::array<std::string_view, 7> foldersWithoutMusic {
    "Calendars", "Contacts", "Notes", "Photos", "System Volume Information", "Android", "LOST.DIR"};

template <std::size_t Count> bool holds(const std::array<std::string_view, Count> &list, std::string_view text)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

bool isHidden(const std::filesystem::path &item)
{
    return item.filename().native().starts_with('.');
}

void addFolder(const std::filesystem::path &folder, std::vector<std::filesystem::path> &files)
{
    std::error_code failure;
    std::filesystem::directory_iterator entry(folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code unknown; // an entry that cannot be asked is neither file nor folder
        if (isHidden(entry->path()) || entry->is_symlink(unknown)) {
            continue;
        }
        if (entry->is_directory(unknown)) {
            addFolder(entry->path(), files);
        } else if (hasAudioExtension(entry->path()) && entry->is_regular_file(unknown)) {
            files.push_back(entry->path());
        }
    }
}

} // namespace

bool hasAudioExtension(const std::filesystem::path &file)
{
    std::string extension = file.extension().native();
    if (extension.size() < 2) {
        return false;
    }
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return holds(audioExtensions, std::string_view(extension).substr(1));
}

std::vector<std::filesystem::path> scanAudio(const std::vector<std::filesystem::path> &urls)
{
    std::vector<std::filesystem::path> files;
    for (const std::filesystem::path &given : urls) {
        const std::filesystem::path url = given.has_filename() ? given : given.parent_path();
        if (isSymbolicLink(url) || isHidden(url)) {
            continue;
        }
        if (Files::isDirectory(url)) {
            addFolder(url, files);
        } else if (hasAudioExtension(url)) {
            files.push_back(url);
        }
    }
    return files;
}

std::vector<std::filesystem::path> deviceMusicFolders(const std::filesystem::path &root)
{
    std::vector<std::filesystem::path> folders;
    std::error_code failure;
    std::filesystem::directory_iterator entry(root, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code unknown;
        const bool music = !isHidden(entry->path()) && !holds(foldersWithoutMusic, entry->path().filename().native());
        if (music && entry->is_directory(unknown)) {
            folders.push_back(entry->path());
        }
    }
    return folders;
}
