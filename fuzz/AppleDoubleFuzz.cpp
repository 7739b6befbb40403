// Any bytes as the companion of a file, which is removed if the first four say that it is one, and only then.
#include "FuzzFile.h"

#include "storage/MacMetadata.h"

#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::filesystem::path root = "/dev/shm/marlune-fuzz-" + std::to_string(::getpid());
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    std::filesystem::create_directories(root / ".rockbox");
    std::filesystem::create_directories(root / "Music/song");
    require(bool(std::ofstream(root / "Music/._song", std::ios::binary) << bytes));
    const bool isCompanion = bytes.starts_with(std::string("\0\5\x16\7", 4));
    require(Storage::cleanupMacMetadata(Storage::DeviceAnchor(root), root / "Backups").removed == int(isCompanion));
    require(exists(root / "Music/._song") != isCompanion);
    std::filesystem::remove_all(root);
    return 0;
}
