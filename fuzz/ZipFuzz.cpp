// Any bytes as an archive, and as a name in one.
#include "FuzzFile.h"

#include "storage/ZipInspection.h"

#include "platform/MarluneError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FuzzFile file(".zip");
    try {
        Storage::inspectZip(file.write(data, size));
        require(size >= 22 + 46 + 1 + 30); // the three records, one of them with a name
    } catch (const MarluneError &) { // no archive, or none that is taken
    }
    const std::string name(data, std::find(data, data + size, '\n'));
    try {
        Storage::validateZipListing(QString::fromStdString(name));
        const std::filesystem::path inside("/in" / std::filesystem::path(name));
        require(!name.starts_with('/') && inside.lexically_normal().native().starts_with("/in"));
    } catch (const MarluneError &) { // leads elsewhere
    }
    return 0;
}
