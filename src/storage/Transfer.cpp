#include "storage/Transfer.h"

#include "storage/Digest.h"
#include "storage/DiskSpelling.h"
#include "storage/PathSafety.h"
#include "storage/Writers.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <limits>

namespace {

/// Makes names for one volume.
class Names {
public:
    explicit Names(Volumes::NameRules rules)
        : m_rules(rules)
    {
    }

    [[nodiscard]] std::filesystem::path folder(const TransferFile &file) const
    {
        std::filesystem::path relative
            = std::filesystem::path("Music") / component(safeName(file.artist)) / component(safeName(file.album));
        if (file.discFolder) {
            relative /= component(safeName(*file.discFolder));
        }
        return relative;
    }

    [[nodiscard]] std::filesystem::path file(const std::filesystem::path &source) const
    {
        return component(safeName(Files::name(source)));
    }

    /// The name to try when all before it are taken: "NAME (2).EXT". Without an extension the dot stays.
    [[nodiscard]] std::filesystem::path numbered(const std::filesystem::path &source, int number) const
    {
        const QString ending
            = QStringLiteral(" (") + QString::number(number) + QStringLiteral(").") + Files::extension(source);
        return component(safeName(Files::baseName(source)), ending);
    }

private:
    [[nodiscard]] std::filesystem::path component(const QString &name, const QString &ending = {}) const
    {
        return Files::fromText(volumeName(name, m_rules, ending));
    }

    Volumes::NameRules m_rules;
};

struct Destination {
    std::filesystem::path name;
    bool identical = false; ///< the same content is there already
};

/// Links are followed.
bool isTaken(const Files::Folder &folder, const std::filesystem::path &name)
{
    struct stat status {};
    return ::fstatat(folder.descriptor.get(), name.c_str(), &status, 0) == 0;
}

/// The first of the names for `source` in `folder` that is free or holds the same content.
Destination findDestination(const std::filesystem::path &source, const Files::Folder &folder, const Names &names)
{
    std::filesystem::path candidate = names.file(source);
    for (int number = 2; isTaken(folder, candidate); ++number) {
        if (Files::kindOf(candidate, folder.descriptor.get()) == Files::Kind::Link) {
            throw MarluneError(QStringLiteral("Plik docelowy jest dowiązaniem symbolicznym."));
        }
        if (Storage::digest(source) == Storage::digest(candidate, folder.descriptor.get())) {
            return {candidate, true};
        }
        candidate = names.numbered(source, number);
    }
    return {candidate, false};
}

/// Copies under a hidden name, looks again that device and folder are still there, and gives the final name in one
/// step.
void copyInto(const std::filesystem::path &source, const Files::Folder &folder, const std::filesystem::path &name,
    const Storage::DeviceAnchor &device)
{
    Files::place(folder, name, Files::Placing::Create, [&](const std::filesystem::path &file, int from) {
        Storage::copyAudioBytes(source, file, from);
        (void)device.require();
        device.requireUnmoved(folder);
    });
}

/// A missing source ends the run here, before anything is written. A link counts as itself; it is refused later.
std::int64_t totalSize(std::span<const TransferFile> files)
{
    std::int64_t total = 0;
    for (const TransferFile &file : files) {
        struct stat status {};
        if (::lstat(file.source.c_str(), &status) != 0) {
            Files::throwFailure(errno, file.source);
        }
        if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) { // a pipe would be waited for without end
            Files::throwFailure(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, file.source);
        }
        if (__builtin_add_overflow(total, std::int64_t(status.st_size), &total)) {
            return std::numeric_limits<std::int64_t>::max(); // more than any disk holds
        }
    }
    return total;
}

} // namespace

namespace Storage {

TransferResult transfer(std::span<const TransferFile> files, const DeviceAnchor &device,
    const TransferProgress &progress, const std::stop_token &stop)
{
    const std::int64_t total = totalSize(files);
    // Files that are on the device already count too: to leave them out would cost a pass over all content.
    if (total >= device.require().available) {
        throw MarluneError(QStringLiteral("Za mało wolnego miejsca na cały transfer."));
    }
    const Volumes::NameRules rules = Volumes::nameRules(device.root());
    const Names names(rules);
    DiskSpelling spelling(device.root(), rules);
    TransferResult result;
    result.destinations.reserve(files.size());
    for (const TransferFile &file : files) {
        if (stop.stop_requested()) {
            break;
        }
        (void)device.require();
        if (isSymbolicLink(file.source)) {
            throw MarluneError(QStringLiteral("Import dowiązań nie jest obsługiwany."));
        }
        // A playlist must not name one file in two ways.
        const std::filesystem::path place = spelling.of(names.folder(file));
        const Files::Folder folder = device.folder(place, DeviceAnchor::Missing::Make);
        spelling.add(place);
        const Destination destination = findDestination(file.source, folder, names);
        if (destination.identical) {
            ++result.skipped;
        } else {
            copyInto(file.source, folder, destination.name, device);
            ++result.copied;
        }
        result.destinations.push_back(
            device.root() / (destination.identical ? spelling.of(place / destination.name) : place / destination.name));
        progress(int(result.destinations.size()), int(files.size()));
    }
    if (result.copied > 0) {
        Files::syncVolume(device.folder(""), "."); // each file is there by now, its name perhaps not
    }
    return result;
}

} // namespace Storage
