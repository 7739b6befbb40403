#include "library/LibraryScan.h"

#include "library/AudioExtensions.h"

#include "platform/files/FolderItems.h"
#include "platform/tasks/Parallel.h"

#include <QThread>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 7> foldersWithoutMusic {
    "Calendars", "Contacts", "Notes", "Photos", "System Volume Information", "Android", "LOST.DIR"};

bool isHidden(const std::string &name)
{
    return name.starts_with('.');
}

void addFolder(const std::filesystem::path &folder, std::vector<AudioFile> &files, const std::stop_token &stop)
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
            files.push_back({std::move(path), {}});
        }
    }
}

void addGiven(const std::filesystem::path &url, AudioFound &found, const std::stop_token &stop, Missing missing)
{
    struct stat status {};
    const bool isPresent = ::lstat(url.c_str(), &status) == 0;
    if (isPresent) {
        ++found.present;
        found.volumes.insert(status.st_dev);
    }
    if ((isPresent && S_ISLNK(status.st_mode)) || isHidden(url.filename().native())) {
        return;
    }
    if (isPresent && S_ISDIR(status.st_mode)) {
        addFolder(url, found.files, stop);
    } else if ((isPresent || missing == Missing::Keep) && hasAudioExtension(url)) {
        found.files.push_back({url, isPresent ? FileStamp::from(status) : std::nullopt});
    }
}

} // namespace

AudioFound findAudio(const std::vector<std::filesystem::path> &urls, const std::stop_token &stop, Missing missing)
{
    constexpr std::size_t portion = 1000; // a whole library comes as the paths of its files
    std::vector<AudioFound> portions(urls.size() / portion + 1);
    Parallel::forEach(portions.size(), QThread::idealThreadCount(), [&](std::size_t number, int) {
        const std::size_t begin = number * portion;
        for (std::size_t url = begin; url < std::min(begin + portion, urls.size()) && !stop.stop_requested(); ++url) {
            addGiven(Files::withoutSeparator(urls[url]), portions[number], stop, missing);
        }
    });
    AudioFound found = std::move(portions.front());
    for (std::size_t number = 1; number < portions.size(); ++number) {
        AudioFound &more = portions[number];
        found.present += more.present;
        found.volumes.merge(more.volumes);
        found.files.insert(
            found.files.end(), std::move_iterator(more.files.begin()), std::move_iterator(more.files.end()));
    }
    return found;
}

std::vector<std::filesystem::path> scanAudio(
    const std::vector<std::filesystem::path> &urls, const std::stop_token &stop)
{
    std::vector<std::filesystem::path> paths;
    for (AudioFile &file : findAudio(urls, stop).files) {
        paths.push_back(std::move(file.path));
    }
    return paths;
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
