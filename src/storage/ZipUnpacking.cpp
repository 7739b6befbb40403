#include "storage/ZipUnpacking.h"

#include "storage/PathSafety.h"
#include "storage/SystemTool.h"
#include "storage/ZipInspection.h"

#include "platform/DiskCalls.h"
#include "platform/Files.h"
#include "platform/MarluneError.h"
#include "platform/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <vector>

namespace {

// Plain names, seen from the scratch folder: the tool would take some characters of a path for a pattern or an option.
const QString packageName = QStringLiteral("package.zip");
const QString unpackedName = QStringLiteral("unpacked");

using TreeIterator = std::filesystem::recursive_directory_iterator;

/// Calls `use` with each item below `folder`, a folder before what it holds. What goes meanwhile, or cannot be read, is
/// passed over.
template <typename Use> void forEachItem(const std::filesystem::path &folder, const Use &use)
{
    std::error_code failure;
    for (TreeIterator item(folder, failure); !failure && item != TreeIterator(); item.increment(failure)) {
        use(*item);
    }
}

/// Stops where the file has become too large; the inspection refuses such a copy.
void copyPackage(const std::filesystem::path &zip, const std::filesystem::path &copy)
{
    constexpr std::size_t blockBytes = 0x100000;
    const RegularFile source = RegularFile::openOrThrow(zip);
    const Files::Descriptor destination = Files::createExclusively(copy);
    std::vector<char> block(blockBytes);
    std::size_t count = blockBytes;
    for (std::int64_t at = 0; count == blockBytes && at < Storage::largestPackage; at += blockBytes) {
        count = source.readAt(at, block);
        if (source.failure()) {
            throw std::system_error(source.failure());
        }
        Files::writeFully(destination.get(), {block.data(), count});
    }
}

/// Each name of the list can need more folders than a disk has room for. In order, each of them brings those that it
/// does not share with the one before it.
void requireFewFolders(const QString &listing)
{
    QList<QStringView> names = QStringView(listing).split(u'\n', Qt::SkipEmptyParts);
    std::sort(names.begin(), names.end());
    QStringView before;
    std::int64_t folders = 0;
    for (const QStringView name : names) {
        const auto own = std::mismatch(name.begin(), name.end(), before.begin(), before.end()).first;
        folders += std::count(own, name.end(), QChar(u'/'));
        before = name;
    }
    if (folders > Storage::mostPackageEntries) {
        throw MarluneError(QStringLiteral("Paczka jest pusta lub zawiera zbyt wiele plików."));
    }
}

/// The sizes in an archive are only what it says of itself.
void requireRoom(const std::filesystem::path &unpacked)
{
    std::int64_t bytes = 0;
    forEachItem(unpacked, [&bytes](const std::filesystem::directory_entry &item) {
        std::error_code failure;
        const std::uintmax_t size
            = item.is_regular_file(failure) && !item.is_symlink(failure) ? item.file_size(failure) : 0;
        bytes += failure ? 0 : std::int64_t(size);
    });
    if (bytes > Storage::largestPackage) {
        throw MarluneError(QStringLiteral("Rozpakowany motyw przekracza 100 MB."));
    }
}

/// An archive can say of its files and folders that nobody may read them, or remove what is in them.
void takeOver(const std::filesystem::path &unpacked)
{
    forEachItem(unpacked, [](const std::filesystem::directory_entry &item) {
        using std::filesystem::perms;
        std::error_code ignored;
        const std::filesystem::file_status status = item.symlink_status(ignored);
        const perms needed = is_directory(status) ? perms::owner_all : perms::owner_read | perms::owner_write;
        if (!is_symlink(status) && (status.permissions() & needed) != needed) {
            std::filesystem::permissions(item, needed, ignored);
        }
    });
}

} // namespace

namespace Storage {

std::filesystem::path unpackZip(const std::filesystem::path &zip, const std::filesystem::path &scratch)
{
    const QString tool = QStringLiteral("unzip");
    const std::filesystem::path copy = scratch / Files::fromText(packageName);
    copyPackage(zip, copy);
    inspectZip(copy);

    ToolBounds bounds;
    bounds.folder = scratch;
    const QString listing = run(tool, {QStringLiteral("-Z1"), packageName}, bounds);
    validateZipListing(listing);
    requireFewFolders(listing);

    const std::filesystem::path unpacked = scratch / Files::fromText(unpackedName);
    if (diskCalls().mkdir(unpacked.c_str(), 0700) != 0) {
        const std::error_code failure(errno, std::generic_category());
        throw std::filesystem::filesystem_error("mkdir", unpacked, failure);
    }
    bounds.largestFile = largestPackage + 1; // one byte too many, so that it is told from a file that just fits
    bounds.watch = [&unpacked] { requireRoom(unpacked); };
    // Never asks (-o), takes no control character and no version number out of a name (-^, -V), sets no times (-DD).
    const QStringList options {
        QStringLiteral("-qq"), QStringLiteral("-o"), QStringLiteral("-^"), QStringLiteral("-V"), QStringLiteral("-DD")};
    try {
        (void)run(tool, options + QStringList {packageName, QStringLiteral("-d"), unpackedName}, bounds);
    } catch (...) {
        takeOver(unpacked);
        throw;
    }
    takeOver(unpacked);
    rejectLinks(unpacked);
    return unpacked;
}

} // namespace Storage
