#include "model/LibraryScan.h"

#include "library/AudioExtensions.h"

#include "storage/PathSafety.h"

#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 7> foldersWithoutMusic {
    "Calendars", "Contacts", "Notes", "Photos", "System Volume Information", "Android", "LOST.DIR"};

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
        const std::string name = entry->path().filename().native();
        const bool isOther
            = std::find(foldersWithoutMusic.begin(), foldersWithoutMusic.end(), name) != foldersWithoutMusic.end();
        if (!isHidden(entry->path()) && !isOther && entry->is_directory(unknown)) {
            folders.push_back(entry->path());
        }
    }
    return folders;
}
