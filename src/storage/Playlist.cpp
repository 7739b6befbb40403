#include "storage/Playlist.h"

#include "storage/DeviceAnchor.h"
#include "storage/PathSafety.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"
#include "platform/volumes/Volumes.h"

#include <cerrno>
#include <string>
#include <system_error>

namespace {

/// A path as the firmware knows it, from the device's root.
std::string devicePath(const std::filesystem::path &track, const std::string &prefix)
{
    const std::string path = Files::standardized(track).native();
    if (!path.starts_with(prefix) || path.find_first_of("\n\r") != std::string::npos) { // a line break ends an entry
        throw MarluneError(QStringLiteral("Playlista może zawierać wyłącznie utwory z wybranego iPoda."));
    }
    if (!QUtf8StringView(path.data(), qsizetype(path.size())).isValidUtf8()) {
        throw MarluneError(
            QStringLiteral("Playlista nie może zawierać pliku, którego nazwa nie jest zapisana w UTF-8: ")
            + Files::name(track));
    }
    return path.substr(prefix.size() - 1);
}

std::string playlistText(std::span<const std::filesystem::path> tracks, const std::filesystem::path &root)
{
    const std::string prefix = Files::standardized(root).native() + "/";
    std::string text = "#EXTM3U\n";
    for (const std::filesystem::path &track : tracks) {
        text += devicePath(track, prefix) + "\n";
    }
    return text;
}

[[noreturn]] void refuseTakenName()
{
    throw MarluneError(QStringLiteral("Playlista o tej nazwie już istnieje. Wybierz inną nazwę."));
}

} // namespace

namespace Storage {

std::filesystem::path playlist(
    const QString &name, std::span<const std::filesystem::path> tracks, const std::filesystem::path &root)
{
    if (tracks.empty()) {
        throw MarluneError(QStringLiteral("Najpierw wgraj utwory na iPoda."));
    }
    const std::string text = playlistText(tracks, root);
    const DeviceAnchor device(root);
    const Files::Folder folder = device.folder("Playlists", DeviceAnchor::Missing::Make);
    const std::filesystem::path file
        = Files::fromText(volumeName(safeName(name), Volumes::nameRules(root), QStringLiteral(".m3u8")));
    if (Files::kindOf(file, folder.descriptor.get()) != Files::Kind::None) {
        refuseTakenName();
    }
    try {
        Files::place(folder, file, Files::Placing::Create, [&](const std::filesystem::path &temporary, int from) {
            Files::writeNew(temporary, text, Files::Durability::Now, from);
            (void)device.require();
            device.requireUnmoved(folder);
        });
    } catch (const std::system_error &failure) {
        if (failure.code().value() == EEXIST) { // since the look above
            refuseTakenName();
        }
        throw;
    }
    Files::syncName(folder);
    return folder.path / file;
}

} // namespace Storage
