// Looking through a collection on a device, and comparing its files.
#include "Figures.h"

#include "artwork/Artwork.h"
#include "library/LibraryScan.h"
#include "library/TrackReader.h"
#include "platform/files/CaselessFolder.h"
#include "quality/CollectionQuality.h"

#include <QBuffer>
#include <QImage>

#include <sys/stat.h>

#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

constexpr int maxTracks = 7200;

QByteArray fitCover()
{
    QByteArray picture;
    QBuffer buffer(&picture);
    Bench::require(QImage(500, 500, QImage::Format_RGB32).save(&buffer, "bmp"), "cannot make a cover");
    return Artwork::baselineJPEG(picture);
}

/// A device's tracks that nothing is wrong with, so that every question is asked: fit covers, each album's in memory of
/// its own, and a cover file in each album's folder.
std::vector<Track> deviceTracks(const std::filesystem::path &library, const std::filesystem::path &music)
{
    using Options = std::filesystem::copy_options;
    std::error_code otherDisk;
    std::filesystem::copy(library, music, Options::recursive | Options::create_hard_links, otherDisk);
    if (otherDisk) {
        std::filesystem::copy(library, music, Options::recursive | Options::skip_existing);
    }
    std::vector<Track> tracks
        = readTracks({.urls = {music}, .known = {}, .artworkOverrides = {}, .artwork = {}}, [](int, int) { }).tracks;
    tracks.resize(std::min<std::size_t>(tracks.size(), maxTracks));
    const QByteArray cover = fitCover();
    std::map<std::filesystem::path, QByteArray> covers;
    for (Track &track : tracks) {
        const std::filesystem::path folder = track.url.parent_path();
        const auto [place, isNew] = covers.try_emplace(folder, cover.constData(), cover.size());
        if (isNew && !Artwork::folderCoverExists(CaselessFolder(folder))) {
            std::ofstream(folder / "cover.jpg", std::ios::binary).write(cover.constData(), cover.size());
        }
        track.artwork = place->second;
    }
    return tracks;
}

/// 134 files of 20 to 40 MB, 4 GB. 40 are copies of 40 others, 14 have the size of another one but other bytes, and 40
/// a size of their own.
class Files {
public:
    explicit Files(const std::filesystem::path &folder)
        : m_folder(folder)
    {
        constexpr std::int64_t least = 20'000'000;
        for (int i = 0; i < 40; ++i) {
            const std::int64_t size = least + i * 500'001;
            add(size, unsigned(i), true);
            add(size, unsigned(i), true);
        }
        for (int i = 0; i < 14; ++i) {
            add(least + 250'000 + i / 2 * 1'300'003, unsigned(100 + i), true);
        }
        for (int i = 0; i < 40; ++i) {
            add(least + 100'000 + i * 490'007, unsigned(200 + i), false);
        }
    }
    std::vector<Track> tracks;
    QStringList candidates;
    double candidateBytes = 0;

private:
    void add(std::int64_t size, unsigned seed, bool isCandidate)
    {
        std::mt19937_64 random(seed);
        std::vector<std::uint64_t> content(std::size_t(size) / sizeof(std::uint64_t) + 1);
        std::generate(content.begin(), content.end(), std::ref(random));
        Track track;
        track.id = QUuid::createUuid();
        track.url = m_folder / (std::to_string(tracks.size()) + ".flac");
        track.bytes = size;
        std::ofstream stream(track.url, std::ios::binary);
        stream.write(reinterpret_cast<const char *>(content.data()), size);
        stream.close();
        Bench::require(bool(stream), "cannot write the files to compare");
        if (isCandidate) {
            candidates.append(Bench::text(track.url));
            candidateBytes += double(size);
        }
        tracks.push_back(std::move(track));
    }

    std::filesystem::path m_folder;
};

} // namespace

namespace Bench {

void inspect(const std::filesystem::path &library)
{
    const WorkFolder folder;
    const std::vector<Track> tracks = deviceTracks(library, folder.path() / "Music");
    std::set<std::filesystem::path> asked; // each track, and the one cover of each folder
    for (const Track &track : tracks) {
        asked.insert(track.url);
        const std::filesystem::path beside = track.url.parent_path();
        for (const char *name : {"cover.jpeg", "cover.jpg", "cover.bmp", "folder.jpg"}) {
            if (std::filesystem::exists(beside / name)) {
                asked.insert(beside / name);
                break;
            }
        }
    }
    std::size_t issues = 0;
    print("inspect",
        inTurn([&] { return seconds([&] { issues = CollectionQuality::inspect(tracks, folder.path()).size(); }); },
            [&] {
                return seconds([&] {
                    for (const std::filesystem::path &file : asked) {
                        struct stat status {};
                        require(::stat(file.c_str(), &status) == 0, "a file is gone");
                    }
                });
            },
            21));
    std::printf("inspect: %zu tracks, %zu files asked for, %zu issues\n", tracks.size(), asked.size(), issues);
}

void duplicates(const std::filesystem::path &)
{
    const WorkFolder folder;
    const Files files(folder.path());
    const auto ours = [&] {
        std::size_t groups = 0;
        const double time
            = seconds([&] { groups = CollectionQuality::duplicates(files.tracks, [](int, int) { }).groups.size(); });
        require(groups == 40, "not all duplicates were found");
        return files.candidateBytes / time;
    };
    const auto peer = [&] {
        const QStringList arguments
            = QStringList {QStringLiteral("dgst"), QStringLiteral("-sha256")} + files.candidates;
        return files.candidateBytes / seconds([&] { runTool(QStringLiteral("openssl"), arguments); });
    };
    (void)ours(); // both find the files in memory
    print("duplicates", inTurn(ours, peer));
}

} // namespace Bench
