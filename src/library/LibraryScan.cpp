#include "library/LibraryScan.h"

#include "library/AudioExtensions.h"

#include "platform/files/FolderItems.h"
#include "platform/tasks/Parallel.h"
#include "platform/text/TextOrder.h"
#include "platform/volumes/DiskKind.h"

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

/// What was found in one place, with the places below it.
struct Place {
    std::filesystem::path path; ///< of a folder; empty for a part of what was given
    std::vector<AudioFile> files;
    std::vector<Place> folders;
    std::vector<std::size_t> order; ///< how many of `files` come before each of `folders`
};

/// Lists one folder, not those in it.
void list(Place &place)
{
    const Files::Descriptor folder = Files::readableFolder(place.path);
    std::vector<Files::FolderItem> items = Files::readableItemsOf(folder);
    std::erase_if(items, [](const Files::FolderItem &item) {
        return isHidden(item.name)
            || (item.kind != Files::Kind::Folder && (item.kind != Files::Kind::File || !hasAudioExtension(item.name)));
    });
    // With the separator that its files' paths have there.
    TextOrder::stableSort(items, [](const Files::FolderItem &item) {
        return Files::textOfBytes(item.kind == Files::Kind::Folder ? item.name + '/' : item.name);
    });
    for (const Files::FolderItem &item : items) {
        if (item.kind == Files::Kind::Folder) {
            place.order.push_back(place.files.size());
            place.folders.push_back({.path = place.path / item.name, .files = {}, .folders = {}, .order = {}});
        } else {
            place.files.push_back({place.path / item.name, FileStamp::of(item.name, folder.get())});
        }
    }
}

void listAll(std::vector<Place *> level, int workers, const std::stop_token &stop)
{
    while (!level.empty() && !stop.stop_requested()) {
        Parallel::forEach(level.size(), workers, [&](std::size_t number, int) {
            if (!stop.stop_requested()) {
                list(*level[number]);
            }
        });
        std::vector<Place *> next;
        for (Place *place : level) {
            std::ranges::transform(place->folders, std::back_inserter(next), [](Place &folder) { return &folder; });
        }
        level = std::move(next);
    }
}

void takeFiles(Place &place, std::vector<AudioFile> &files)
{
    std::size_t taken = 0;
    const auto takeUpTo = [&](std::size_t end) {
        files.insert(files.end(), std::move_iterator(place.files.begin() + std::ptrdiff_t(taken)),
            std::move_iterator(place.files.begin() + std::ptrdiff_t(end)));
        taken = end;
    };
    for (std::size_t folder = 0; folder < place.folders.size(); ++folder) {
        takeUpTo(place.order[folder]);
        takeFiles(place.folders[folder], files);
    }
    takeUpTo(place.files.size());
}

/// A part of what was given, and what is known of it.
class Given {
public:
    void add(std::filesystem::path url, Missing missing)
    {
        struct stat status {};
        const std::string &path = url.native();
        const std::size_t name = path.rfind('/') + 1;
        const int folder = folderOf(path, name);
        const bool isPresent = ::fstatat(folder, m_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
        if (isPresent) {
            ++present;
            volumes.insert(status.st_dev);
        }
        if ((isPresent && S_ISLNK(status.st_mode)) || (name < path.size() && path[name] == '.')) {
            return;
        }
        if (isPresent && S_ISDIR(status.st_mode)) {
            place.order.push_back(place.files.size());
            place.folders.push_back({.path = std::move(url), .files = {}, .folders = {}, .order = {}});
        } else if ((isPresent || missing == Missing::Keep) && hasAudioExtension(url)) {
            place.files.push_back({std::move(url), isPresent ? FileStamp::from(status) : std::nullopt});
        }
    }

    Place place;
    std::size_t present = 0;
    std::set<dev_t> volumes;

private:
    /// From where m_name, the path or its end behind `name`, counts. Files come folder by folder: to look up the way to
    /// each of them takes the system as long again.
    int folderOf(const std::string &path, std::size_t name)
    {
        const std::string_view folder = std::string_view(path).substr(0, name);
        if (name == 0 || folder != m_folder) {
            m_folder = folder;
            m_opened = Files::Descriptor();
        } else if (m_opened.get() < 0) {
            m_opened = Files::Descriptor(::open(m_folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        }
        m_name = path.c_str() + (m_opened.get() >= 0 ? name : 0);
        return m_opened.get() >= 0 ? m_opened.get() : AT_FDCWD;
    }

    std::string m_folder;
    Files::Descriptor m_opened; ///< from its second file on
    const char *m_name = nullptr;
};

} // namespace

int readersAtOnce(const std::set<dev_t> &volumes)
{
    constexpr int onSlowDisks = 2; // one's next request waits at the disk while another's answer is worked on
    constexpr int onQuickDisks = 8; // more than cores: most wait for the disk, which answers many at a time
    const auto isSerial = [](dev_t volume) { return Volumes::diskKind(volume) == Volumes::DiskKind::Serial; };
    return std::any_of(volumes.begin(), volumes.end(), isSerial) ? onSlowDisks
                                                                 : std::max(onQuickDisks, QThread::idealThreadCount());
}

AudioFound findAudio(std::vector<std::filesystem::path> urls, const std::stop_token &stop, Missing missing)
{
    constexpr std::size_t most = 1000; // of a portion: a whole library comes as the paths of its files
    std::vector<Given> portions(urls.size() / most + 1);
    const bool areClean = std::ranges::none_of(urls, [](const auto &url) { return url.native().ends_with('/'); });
    Parallel::forEach(portions.size(), QThread::idealThreadCount(), [&](std::size_t number, int) {
        const std::size_t end = std::min((number + 1) * most, urls.size());
        for (std::size_t url = number * most; url < end && !stop.stop_requested(); ++url) {
            const bool hasSeparator = urls[url].native().ends_with('/');
            portions[number].add(hasSeparator ? Files::withoutSeparator(urls[url]) : std::move(urls[url]), missing);
        }
    });
    AudioFound found;
    std::vector<Place *> folders;
    for (Given &portion : portions) {
        found.present += portion.present;
        found.volumes.merge(portion.volumes);
        std::ranges::transform(
            portion.place.folders, std::back_inserter(folders), [](Place &folder) { return &folder; });
    }
    const bool areFiles = folders.empty();
    listAll(std::move(folders), readersAtOnce(found.volumes), stop);
    found.files.reserve(urls.size());
    for (Given &portion : portions) {
        takeFiles(portion.place, found.files);
    }
    found.isAsGiven = areFiles && areClean && found.files.size() == urls.size();
    return found;
}

std::vector<std::filesystem::path> scanAudio(std::vector<std::filesystem::path> urls, const std::stop_token &stop)
{
    std::vector<std::filesystem::path> paths;
    for (AudioFile &file : findAudio(std::move(urls), stop).files) {
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
