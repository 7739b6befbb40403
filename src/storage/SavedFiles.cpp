#include "storage/SavedFiles.h"

#include "storage/Blocks.h"

#include "platform/DiskCalls.h"
#include "platform/Files.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

[[noreturn]] void throwFailure(const char *what, const std::filesystem::path &path, int error)
{
    throw std::filesystem::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

/// Returns when the names in `folder` are on the medium.
Files::Descriptor openRegular(const std::filesystem::path &file)
{
    // Non-blocking, so that a pipe is refused and not waited for.
    Files::Descriptor source(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (source.get() < 0 || ::fstat(source.get(), &status) != 0) {
        throwFailure("open", file, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throwFailure("open", file, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    return source;
}

void copyRegular(const std::filesystem::path &file, const std::filesystem::path &copy)
{
    const Files::Descriptor source = openRegular(file);
    const Files::Descriptor destination = Files::createExclusively(copy);
    Storage::forEachBlock(
        source.get(), [&](std::span<const char> block) { Files::writeFully(destination.get(), block); });
    Files::synchronise(destination.get());
}

QString newIdentifier()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace

namespace Storage {

std::optional<std::filesystem::path> SavedFiles::copyOf(const std::filesystem::path &file) const
{
    const auto found = copies.find(file);
    return found == copies.end() ? std::nullopt : std::optional(found->second);
}

SavedFiles saveFiles(
    std::span<const std::filesystem::path> files, const std::filesystem::path &backupRoot, const SavedNames &names)
{
    SavedFiles saved {.folder = backupRoot / Files::fromText(names.folderPrefix + newIdentifier()), .copies = {}};
    Files::makeFolders(saved.folder);
    QJsonObject manifest;
    for (const std::filesystem::path &file : files) {
        const QString name = newIdentifier() + names.fileSuffix;
        const std::filesystem::path copy = saved.folder / Files::fromText(name);
        copyRegular(file, copy);
        saved.copies.emplace(file, copy);
        manifest.insert(name, Files::text(file));
    }
    const QByteArray json = QJsonDocument(manifest).toJson(QJsonDocument::Compact);
    Files::writeAtomically(saved.folder / "manifest.json", {json.constData(), std::size_t(json.size())});
    Files::synchroniseFolder(saved.folder);
    return saved;
}

} // namespace Storage
