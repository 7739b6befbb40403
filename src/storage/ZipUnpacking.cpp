#include "storage/ZipUnpacking.h"

#include "storage/ComputerDisk.h"
#include "storage/FolderTree.h"
#include "storage/PathSafety.h"
#include "storage/SystemTool.h"
#include "storage/ZipInspection.h"

#include "platform/MarluneError.h"
#include "platform/files/DiskCalls.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"
#include "platform/files/RegularFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <vector>

namespace {

// Plain names, seen from the scratch folder: the tool would take some characters of a path for a pattern or an option.
const QString packageName = QStringLiteral("package.zip");
const QString unpackedName = QStringLiteral("unpacked");
const QString tool = QStringLiteral("unzip");

// Offsets in the end record, of which it is the last field, and in a central header (APPNOTE.TXT, 4.3.16 and 4.4.2).
constexpr std::int64_t commentLength = 20;
constexpr std::int64_t madeBySystem = 5;
constexpr char unixSystem = 3;

// Methods of compression (APPNOTE.TXT, 4.4.5).
constexpr std::uint32_t deflated = 8;
struct Method {
    std::uint32_t number;
    const char *name;
};
constexpr Method methods[]
    = {{9, "Deflate64"}, {12, "BZIP2"}, {14, "LZMA"}, {20, "Zstandard"}, {93, "Zstandard"}, {95, "XZ"}, {98, "PPMd"}};

/// The archive as it was inspected, so that the tool reads the same. Without the comment: the tool takes the last end
/// record that it finds there. And as if made on Unix: the tool reads names, and kinds of files, by the rules of the
/// system that made them, and would turn names that came from Windows, which are UTF-8, into others.
void copyPackage(
    const std::filesystem::path &zip, const Storage::ZipContents &contents, const std::filesystem::path &copy)
{
    constexpr std::int64_t partBytes = 0x100000;
    const RegularFile source = RegularFile::openOrThrow(zip);
    const Files::Descriptor destination = Files::createExclusively(copy);
    std::vector<char> block(partBytes);
    auto entry = contents.entries.begin();
    const std::int64_t end = contents.directoryEnd + commentLength;
    for (std::int64_t at = 0; at < end; at += partBytes) {
        const std::size_t count = source.readAt(at, {block.data(), std::size_t(std::min(partBytes, end - at))});
        if (source.failure()) {
            throw std::filesystem::filesystem_error("read", zip, source.failure());
        }
        for (; entry != contents.entries.end() && entry->header + madeBySystem < at + partBytes; ++entry) {
            block[std::size_t(entry->header + madeBySystem - at)] = unixSystem;
        }
        Files::writeFully(destination.get(), {block.data(), count});
    }
    constexpr char noComment[] = {0, 0};
    Files::writeFully(destination.get(), noComment);
}

/// As the tool shows names: a control character as "^" and a letter.
QByteArray listed(const Storage::ZipContents &contents)
{
    QByteArray listing;
    for (const Storage::ZipContents::Entry &entry : contents.entries) {
        for (const char c : entry.name) {
            if (static_cast<unsigned char>(c) < 0x20) {
                listing += '^';
                listing += char(c + '@');
            } else {
                listing += c;
            }
        }
        listing += '\n';
    }
    return listing;
}

/// Refuses an archive of which the tool does not read the same names.
void requireListing(const QString &listing, const Storage::ZipContents &contents)
{
    if (listing.isEmpty()) {
        throw MarluneError(QStringLiteral("Nie można odczytać nazw plików w paczce."));
    }
    Storage::validateZipListing(listing);
    if (listing.toUtf8() != listed(contents)) {
        Storage::refusePackage();
    }
}

/// Each name can need more folders than a disk has room for. In order, each of them brings those that it does not
/// share with the one before it.
void requireFewFolders(const Storage::ZipContents &contents)
{
    std::vector<QByteArray> names;
    names.reserve(contents.entries.size());
    for (const Storage::ZipContents::Entry &entry : contents.entries) {
        names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    QByteArrayView before;
    std::int64_t folders = 0;
    for (const QByteArray &name : names) {
        const auto own = std::mismatch(name.begin(), name.end(), before.begin(), before.end()).first;
        folders += std::count(own, name.end(), '/');
        before = name;
    }
    if (folders > Storage::maxPackageEntries) {
        throw MarluneError(QStringLiteral("Paczka jest pusta lub zawiera zbyt wiele plików."));
    }
}

/// The sizes in an archive are only what it says of itself.
void requireRoom(const std::filesystem::path &unpacked)
{
    std::int64_t bytes = 0;
    Storage::forEachBelow(unpacked, Storage::Unreadable::Throw, [&bytes](const Storage::TreeItem &item) {
        struct stat status {};
        if (::fstatat(item.folder, item.path.filename().c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
            bytes += S_ISREG(status.st_mode) ? status.st_size : 0;
        } else if (errno != ENOENT) {
            Files::throwFailure(errno, item.path);
        }
    });
    if (bytes > Storage::maxPackage) {
        throw MarluneError(QStringLiteral("Rozpakowany motyw przekracza 100 MB."));
    }
}

/// An archive can say of its files and folders that nobody may read them, or remove what is in them.
void takeOver(const std::filesystem::path &unpacked)
{
    using std::filesystem::perms;
    Storage::forEachBelow(unpacked, Storage::Unreadable::PassOver, [](const Storage::TreeItem &item) {
        std::error_code ignored; // what cannot be read is refused later
        if (item.kind == Files::Kind::Folder) {
            std::filesystem::permissions(item.path, perms::owner_all, ignored);
        } else if (item.kind == Files::Kind::File) {
            std::filesystem::permissions(item.path, perms::owner_read | perms::owner_write, ignored);
        }
    });
}

std::set<std::filesystem::path> inspectedFiles(const Storage::ZipContents &contents)
{
    std::set<std::filesystem::path> files;
    for (const Storage::ZipContents::Entry &entry : contents.entries) {
        const std::filesystem::path file = entry.name.toStdString();
        if (!entry.name.endsWith('/') && !files.insert(file.lexically_normal()).second) {
            Storage::refusePackage(); // one has overwritten the other
        }
    }
    return files;
}

/// Whatever was read before: nothing but plain files and folders has come out, and the files are those inspected.
void requireInspected(const Storage::UnpackedZip &unpacked)
{
    std::set<std::filesystem::path> missing = unpacked.files;
    Storage::forEachBelow(unpacked.folder, Storage::Unreadable::Throw, [&](const Storage::TreeItem &item) {
        if (item.kind == Files::Kind::Link) {
            throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie symboliczne."));
        }
        if (item.kind == Files::Kind::Other) {
            throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie lub plik specjalny."));
        }
        if (item.kind == Files::Kind::File && missing.erase(item.path.lexically_relative(unpacked.folder)) == 0) {
            Storage::refusePackage();
        }
    });
    if (!missing.empty()) {
        Storage::refusePackage();
    }
}

/// For a failure without a word. The tool passes over what was packed in a method that it does not know, and says so
/// only where it is asked to say everything.
QString methodRefusal(const Storage::ZipContents &contents)
{
    using Entry = Storage::ZipContents::Entry;
    // The later a method came, the higher its number, and the fewer tools know it.
    const std::uint32_t method
        = std::max_element(contents.entries.begin(), contents.entries.end(), [](const Entry &a, const Entry &b) {
              return a.method < b.method;
          })->method;
    if (method <= deflated) {
        return Storage::ToolBounds().wordless;
    }
    const auto known = std::find_if(
        std::begin(methods), std::end(methods), [method](const Method &each) { return each.number == method; });
    const QString name
        = known != std::end(methods) ? QString::fromLatin1(known->name) : QStringLiteral("nr %1").arg(method);
    return QStringLiteral("Paczka jest spakowana nieobsługiwaną metodą (%1). Spakuj ją ponownie metodą Deflate.")
        .arg(name);
}

void unpack(
    const std::filesystem::path &scratch, const std::filesystem::path &unpacked, const Storage::ZipContents &contents)
{
    if (diskCalls().mkdir(unpacked.c_str(), 0700) != 0) {
        Files::throwFailure(errno, unpacked);
    }
    Storage::ToolBounds bounds {.folder = scratch};
    // One byte too many, so that it differs from a file that just fits.
    bounds.maxFileBytes = Storage::maxPackage + 1;
    bounds.wordless = methodRefusal(contents);
    bounds.maxOutput = 0x10000; // it says nothing as long as all is well
    bounds.watch = [&unpacked] {
        try {
            requireRoom(unpacked);
        } catch (const std::system_error &failure) {
            // The tool gives folders their modes at its end. They are counted when they have been taken over.
            if (failure.code() != std::errc::permission_denied) {
                throw;
            }
        }
    };
    // Never asks (-o), takes no control character and no version number out of a name (-^, -V), sets no times (-DD).
    const QStringList options {
        QStringLiteral("-qq"), QStringLiteral("-o"), QStringLiteral("-^"), QStringLiteral("-V"), QStringLiteral("-DD")};
    try {
        (void)Storage::run(tool, options + QStringList {packageName, QStringLiteral("-d"), unpackedName}, bounds);
    } catch (const MarluneError &failure) {
        takeOver(unpacked);
        if (failure.message().contains(QStringLiteral("disk full"))) {
            throw std::system_error(ENOSPC, std::generic_category());
        }
        throw;
    } catch (...) {
        takeOver(unpacked);
        throw;
    }
    takeOver(unpacked);
}

} // namespace

namespace Storage {

UnpackedZip unpackZip(const std::filesystem::path &zip, const std::filesystem::path &scratch)
{
    const ZipContents contents = inspectZip(zip);
    const std::filesystem::path copy = scratch / Files::fromText(packageName);
    onComputersDisk(copy, [&] { copyPackage(zip, contents, copy); });
    if (inspectZip(copy) != contents) {
        refusePackage(); // another program has written to it meanwhile
    }
    requireFewFolders(contents);

    requireListing(run(tool, {QStringLiteral("-Z1"), packageName}, {.folder = scratch, .merged = false}), contents);
    const std::filesystem::path unpacked = scratch / Files::fromText(unpackedName);
    onComputersDisk(unpacked, [&] { unpack(scratch, unpacked, contents); });
    requireRoom(unpacked);
    UnpackedZip result {unpacked, inspectedFiles(contents)};
    requireInspected(result);
    rejectLinks(unpacked);
    return result;
}

} // namespace Storage
