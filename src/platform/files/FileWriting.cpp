#include "platform/files/FileWriting.h"

#include "platform/files/DiskCalls.h"

#include <QUuid>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace {

/// EINVAL: some network and FUSE file systems cannot do this to a folder.
bool folderReachesMedium(int folder)
{
    return diskCalls().fsync(folder) == 0 || errno == EINVAL;
}

/// A failure that concerns no file, or one by its hidden name, is reported with the final name.
[[noreturn]] void rethrowFor(
    const std::filesystem::path &path, const std::filesystem::path &temporary, const std::system_error &failure)
{
    const auto *named = dynamic_cast<const std::filesystem::filesystem_error *>(&failure);
    if (named != nullptr && !named->path1().empty() && named->path1() != temporary) {
        throw; // of the file that was read
    }
    throw std::filesystem::filesystem_error("write", path, failure.code());
}

} // namespace

namespace Files {

Descriptor createExclusively(const std::filesystem::path &path, int from)
{
    const int descriptor
        = diskCalls().openat(from, path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (descriptor < 0) {
        throwFailure(errno, path);
    }
    return Descriptor(descriptor);
}

void writeFully(int descriptor, std::span<const char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = diskCalls().write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throwFailure(count == 0 ? EIO : errno);
        }
        bytes = bytes.subspan(std::size_t(count));
    }
}

void sync(int descriptor)
{
    if (diskCalls().fsync(descriptor) != 0) {
        throwFailure(errno);
    }
}

void makeFolders(const std::filesystem::path &folder)
{
    if (folder.empty() || isDirectory(folder)) {
        return;
    }
    makeFolders(folder.parent_path());
    if (diskCalls().mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) { // another job may have made it meanwhile
        throwFailure(errno, folder);
    }
    syncFolder(folder.parent_path());
}

void syncFolder(const std::filesystem::path &folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.get() < 0 || !folderReachesMedium(descriptor.get())) {
        throwFailure(errno, folder);
    }
}

void syncName(const Folder &folder)
{
    (void)folderReachesMedium(folder.descriptor.get());
}

void syncName(const std::filesystem::path &file)
{
    try {
        syncFolder(file.parent_path());
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): as promised
    }
}

std::string newIdentifier()
{
    return QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper().toStdString();
}

std::filesystem::path temporaryName(const QByteArray &purpose)
{
    return ".marlune-" + purpose.toStdString() + newIdentifier() + ".partial";
}

void writeNew(const std::filesystem::path &file, std::span<const char> bytes, Durability durability, int from)
{
    Descriptor descriptor = createExclusively(file, from);
    writeFully(descriptor.get(), bytes);
    if (durability == Durability::Now) {
        sync(descriptor.get());
    }
    if (diskCalls().close(descriptor.release()) != 0) {
        throwFailure(errno, file);
    }
}

void place(const Folder &folder, const std::filesystem::path &name, const PlacingMaker &make)
{
    const std::filesystem::path temporary = temporaryName();
    const int place = folder.descriptor.get();
    try {
        const Placing placing = make(temporary, place);
        const auto rename = placing == Placing::Create ? diskCalls().renameExclusive : diskCalls().renameat;
        if (rename(place, temporary.c_str(), place, name.c_str()) != 0) {
            throwFailure(errno, folder.path / name);
        }
    } catch (const std::system_error &failure) {
        diskCalls().unlinkat(place, temporary.c_str(), 0);
        rethrowFor(folder.path / name, temporary, failure);
    } catch (...) {
        diskCalls().unlinkat(place, temporary.c_str(), 0);
        throw;
    }
}

void place(const Folder &folder, const std::filesystem::path &name, Placing placing, const FileMaker &make)
{
    place(folder, name, [&](const std::filesystem::path &temporary, int from) {
        make(temporary, from);
        return placing;
    });
}

void writeAtomically(const std::filesystem::path &path, std::span<const char> bytes)
{
    const std::filesystem::path parent = path.has_parent_path() ? path.parent_path() : ".";
    const Folder folder {Descriptor(::open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), path.parent_path()};
    if (folder.descriptor.get() < 0) {
        throwFailure(errno, path);
    }
    place(folder, path.filename(), Placing::Replace,
        [&](const std::filesystem::path &file, int from) { writeNew(file, bytes, Durability::Now, from); });
}

void syncVolume(const Folder &folder, const std::filesystem::path &name)
{
    Descriptor file;
    if (kindOf(name, folder.descriptor.get()) == Kind::File) {
        file = openForReading(name, Links::Refuse, folder.descriptor.get());
    }
    const int asked = file.get() < 0 ? folder.descriptor.get() : file.get();
    if (diskCalls().syncfs(asked) != 0 || !folderReachesMedium(asked)) {
        throwFailure(errno, folder.path / name);
    }
}

} // namespace Files
