// Any bytes as an archive, and as the list of its names.
#include "FuzzFile.h"

#include "storage/ZipInspection.h"

#include "platform/MarluneError.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FuzzFile file(".zip");
    try {
        Storage::inspectZip(file.write(data, size));
        require(size >= 22 + 46 + 30 + 2); // the three records, two of them with a name
    } catch (const MarluneError &) { // no archive, or none that is taken
    }
    const std::string listing(reinterpret_cast<const char *>(data), size);
    try {
        Storage::validateZipListing(QString::fromStdString(listing));
        std::istringstream names(listing);
        for (std::string name; std::getline(names, name);) {
            require(("/in/" + name + "/").find("/../") == std::string::npos && !name.starts_with('/'));
        }
    } catch (const MarluneError &) { // one of them leads out, or there is none
    }
    return 0;
}
