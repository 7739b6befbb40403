#include "storage/Playlist.h"

#include "storage/DeviceAnchor.h"
#include "storage/PathSafety.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"
#include "platform/files/FolderItems.h"
#include "platform/volumes/Volumes.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

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

/// Counts the entries of a playlist that comes in pieces, as the firmware does: a line feed or a carriage return ends a
/// line, and "#" at its start makes it a comment.
class EntryCount {
public:
    void add(std::string_view piece)
    {
        for (const char byte : piece) {
            if (byte == '\n' || byte == '\r') {
                m_isAtStart = true;
            } else if (std::exchange(m_isAtStart, false) && byte != '#') {
                ++m_entries;
            }
        }
    }
    [[nodiscard]] std::int64_t entries() const { return m_entries; }

private:
    std::int64_t m_entries = 0;
    bool m_isAtStart = true; ///< of a line
};

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

std::optional<std::int64_t> playlistLength(const std::filesystem::path &file, const std::stop_token &stop)
{
    // 32,000 entries, the most that the firmware can be set to list, of 1,000 bytes each: a longer file would only keep
    // a slow disk busy.
    constexpr std::int64_t maxBytes = 32'000'000;
    constexpr std::string_view mark = "\xEF\xBB\xBF"; // of UTF-8; no part of the first line
    std::vector<char> buffer(65536);
    EntryCount count;
    try {
        const Files::Folder folder = Files::openFolder(file.parent_path());
        const Files::Descriptor opened
            = Files::openForReading(file.filename(), Files::Links::Refuse, folder.descriptor.get());
        struct stat status {};
        if (::fstat(opened.get(), &status) != 0 || status.st_size > maxBytes) {
            return std::nullopt;
        }
        // It may grow meanwhile.
        for (std::int64_t read = 0; read <= maxBytes && !stop.stop_requested();) {
            std::string_view piece(buffer.data(), Files::readFully(opened.get(), buffer));
            const bool last = piece.size() < buffer.size();
            piece.remove_prefix(read == 0 && piece.starts_with(mark) ? mark.size() : 0);
            count.add(piece);
            if (last) {
                return count.entries();
            }
            read += std::int64_t(buffer.size());
        }
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): what cannot be read has no length
    }
    return std::nullopt;
}

} // namespace Storage
