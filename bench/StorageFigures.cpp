// Digests, copying and the search for metadata files.
#include "Figures.h"

#include "storage/Digest.h"
#include "storage/MacMetadata.h"
#include "storage/Transfer.h"

#include <unistd.h>

#include <fstream>
#include <random>

namespace {

void writeFile(const std::filesystem::path &file, std::size_t bytes, std::mt19937_64 &random)
{
    std::vector<std::uint64_t> block(0x100000 / sizeof(std::uint64_t));
    for (std::uint64_t &value : block) {
        value = random();
    }
    std::ofstream stream(file, std::ios::binary);
    for (std::size_t left = bytes; left > 0;) {
        const std::size_t count = std::min<std::size_t>(left, 0x100000);
        stream.write(reinterpret_cast<const char *>(block.data()), std::streamsize(count));
        ++block[left % block.size()];
        left -= count;
    }
    stream.close();
    Bench::require(bool(stream), "cannot write the files to measure on");
}

/// 50,000 files in 5,000 albums of 500 artists, every tenth with its companion.
void makeCollection(const std::filesystem::path &music)
{
    const std::string companion = std::string("\0\5\x16\7\0\2\0\0", 8) + std::string(4088, '\0');
    for (int album = 0; album < 5'000; ++album) {
        const std::filesystem::path folder
            = music / ("Artist " + std::to_string(album / 10)) / ("Album " + std::to_string(album));
        std::filesystem::create_directories(folder);
        for (int track = 0; track < 10; ++track) {
            const std::string name = std::to_string(track) + " A title of usual length.flac";
            std::ofstream(folder / name).put('x');
            if (track == 0) {
                Bench::require(bool(std::ofstream(folder / ("._" + name)) << companion), "cannot write a companion");
            }
        }
    }
}

} // namespace

namespace Bench {

void digest(const std::filesystem::path &)
{
    constexpr std::size_t gibibyte = 1UL << 30;
    const WorkFolder folder;
    const std::filesystem::path file = folder.path() / "file";
    std::mt19937_64 random(1);
    writeFile(file, gibibyte, random);
    ::sync();
    (void)Storage::digest(file);
    print("digest",
        inTurn([&] { return double(gibibyte) / seconds([&] { (void)Storage::digest(file); }); },
            [&] {
                return double(gibibyte) / seconds([&] {
                    runTool(QStringLiteral("openssl"), {QStringLiteral("dgst"), QStringLiteral("-sha256"), text(file)});
                });
            }));
}

void transfer(const std::filesystem::path &)
{
    const WorkFolder folder;
    std::mt19937_64 random(2);
    std::filesystem::create_directories(folder.path() / "source");
    std::vector<TransferFile> files;
    std::size_t total = 0;
    for (int i = 0; total < 2'000'000'000; ++i) {
        const std::size_t bytes = 20'000'000 + random() % 20'000'000;
        const std::filesystem::path file = folder.path() / "source" / (std::to_string(i) + ".flac");
        writeFile(file, bytes, random);
        files.push_back({file, QStringLiteral("Artist"), QStringLiteral("Album"), std::nullopt});
        total += bytes;
    }
    const auto onEmptyFolder = [&](const std::function<void(const std::filesystem::path &)> &copy) {
        const std::filesystem::path root = folder.path() / "device";
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root / ".rockbox");
        ::sync(); // neither pays for what the other left
        return double(total) / seconds([&] { copy(root); });
    };
    print("transfer",
        inTurn(
            [&] {
                return onEmptyFolder([&](const auto &root) {
                    (void)Storage::transfer(files, Storage::DeviceAnchor(root), [](int, int) { });
                });
            },
            [&] {
                return onEmptyFolder([&](const auto &root) {
                    std::filesystem::create_directories(root / "Music/Artist/Album");
                    for (const TransferFile &file : files) {
                        const std::filesystem::path target = root / "Music/Artist/Album" / file.source.filename();
                        runTool(QStringLiteral("dd"),
                            {QStringLiteral("if=") + text(file.source), QStringLiteral("of=") + text(target),
                                QStringLiteral("bs=1M"), QStringLiteral("conv=fsync")});
                    }
                });
            }));
}

void cleanup(const std::filesystem::path &)
{
    const WorkFolder folder;
    std::filesystem::create_directories(folder.path() / ".rockbox");
    makeCollection(folder.path() / "Music");
    const auto search = [&] {
        require(Storage::macMetadataFiles(Storage::DeviceAnchor(folder.path())).size() == 5'000,
            "not every companion was found");
    };
    const auto find = [&] {
        runTool(QStringLiteral("find"),
            {text(folder.path() / "Music"), QStringLiteral("-name"), QStringLiteral("._*"), QStringLiteral("-type"),
                QStringLiteral("f")});
    };
    search(); // the folders are in memory for both
    find();
    print("cleanup", inTurn([&] { return seconds(search); }, [&] { return seconds(find); }));
}

} // namespace Bench
