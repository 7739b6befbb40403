#include "library/LibraryScan.h"

#include "library/AudioExtensions.h"

#include "platform/files/FolderItems.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 7> foldersWithoutMusic {
    "Calendars", "Contacts", "Notes", "Photos", "System Volume Information", "Android", "LOST.DIR"};

bool isHidden(const std::string &name)
{
    return name.starts_with('.');
}

void addFolder(
    const std::filesystem::path &folder, std::vector<std::filesystem::path> &files, const std::stop_token &stop)
{
    for (const Files::FolderItem &item : Files::readableItemsOf(folder)) {
        if (stop.stop_requested()) {
            return;
        }
        std::filesystem::path path = folder / item.name;
        if (isHidden(item.name)) {
            continue;
        }
        if (item.kind == Files::Kind::Folder) {
            addFolder(path, files, stop);
        } else if (item.kind == Files::Kind::File && hasAudioExtension(path)) {
            files.push_back(std::move(path));
        }
    }
}

} // namespace

AudioFound findAudio(const std::vector<std::filesystem::path> &urls, const std::stop_token &stop, Missing missing)
{
    AudioFound found;
    for (const std::filesystem::path &given : urls) {
        if (stop.stop_requested()) {
            break;
        }
        const std::filesystem::path url = Files::withoutSeparator(given);
        struct stat status {};
        const bool isPresent = ::lstat(url.c_str(), &status) == 0;
        if (isPresent) {
            ++found.present;
            found.volumes.insert(status.st_dev);
        }
        if ((isPresent && S_ISLNK(status.st_mode)) || isHidden(url.filename().native())) {
            continue;
        }
        if (isPresent && S_ISDIR(status.st_mode)) {
            addFolder(url, found.files, stop);
        } else if ((isPresent || missing == Missing::Keep) && hasAudioExtension(url)) {
            found.files.push_back(url);
        }
    }
    return found;
}

std::vector<std::filesystem::path> scanAudio(
    const std::vector<std::filesystem::path> &urls, const std::stop_token &stop)
{
    return findAudio(urls, stop).files;
}

std::vector<std::filesystem::path> deviceMusicFolders(const std::filesystem::path &root)
{
    std::vector<std::filesystem::path> folders;
    for (const Files::FolderItem &item : Files::readableItemsOf(root)) {
        const bool isOther
            = std::find(foldersWithoutMusic.begin(), foldersWithoutMusic.end(), item.name) != foldersWithoutMusic.end();
        if (item.kind == Files::Kind::Folder && !isHidden(item.name) && !isOther) {
            folders.push_back(root / item.name);
        }
    }
    return folders;
}
