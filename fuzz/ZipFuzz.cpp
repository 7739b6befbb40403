// Any bytes as an archive, and as the list of its names.
#include "FuzzFile.h"

#include "storage/ZipInspection.h"

#include "platform/MarluneError.h"

#include <QStringList>

namespace {

bool passes(const QString &listing)
{
    try {
        Storage::validateZipListing(listing);
        return true;
    } catch (const MarluneError &) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FuzzFile file(".zip");
    try {
        Storage::inspectZip(file.write(data, size));
        require(size >= 22 + 46 + 1 + 30); // the three records, one of them with a name
    } catch (const MarluneError &) { // no archive, or none that is taken
    }

    const QString listing = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QStringList names = listing.split(u'\n', Qt::SkipEmptyParts);
    bool each = !names.isEmpty() && names.size() <= Storage::mostPackageEntries;
    for (const QString &name : names.first(std::min<qsizetype>(names.size(), Storage::mostPackageEntries))) {
        const std::filesystem::path inside("/in" / std::filesystem::path(name.toStdString()));
        const bool leadsOut = !inside.lexically_normal().native().starts_with("/in") || name.startsWith(u'/');
        require(!leadsOut || !passes(name));
        each = each && passes(name);
    }
    require(passes(listing) == each);
    return 0;
}
