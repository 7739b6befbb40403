// Files of the computer and the device: names as text, reading with limits, and the one atomic writer.
//
// A local file's location is a std::filesystem::path, because a Linux name is bytes. All functions are blocking,
// keep no state and may run on any thread; failures are std::system_error unless a comment says otherwise.
#pragma once

#include <QByteArray>
#include <QString>

#include <fcntl.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>

namespace Files {

/// Throws the system's failure with this number and the path that it concerns.
[[noreturn]] void throwFailure(int error, const std::filesystem::path &path);

/// A path as text, for display and storage. Lossless: a byte that is not valid UTF-8 becomes the lone surrogate
/// U+DC00 + byte, from which fromText() makes the same byte again.
[[nodiscard]] QString text(const std::filesystem::path &path);
[[nodiscard]] std::filesystem::path fromText(const QString &text);

/// The last component as text; of "/a/b/" it is "b", of the root "/".
[[nodiscard]] QString name(const std::filesystem::path &path);
/// The name without its last extension, as text. A leading dot begins no extension.
[[nodiscard]] QString baseName(const std::filesystem::path &path);
/// The extension without its dot, as text; empty if there is none.
[[nodiscard]] QString extension(const std::filesystem::path &path);

/// Absolute, without "." and ".." pieces, doubled or trailing separators; links are not resolved.
[[nodiscard]] std::filesystem::path standardised(const std::filesystem::path &path);

/// Links are followed; any failure of the query counts as "no".
[[nodiscard]] bool exists(const std::filesystem::path &path);
[[nodiscard]] bool isDirectory(const std::filesystem::path &path);
/// What stands at a path itself: a link is not followed.
enum class Kind : std::uint8_t { None, File, Folder, Link, Other };
/// None where nothing stands; throws where the disk does not tell. A relative path is counted from the open folder
/// `from`.
[[nodiscard]] Kind kindOf(const std::filesystem::path &path, int from = AT_FDCWD);
/// None also where the disk does not tell.
[[nodiscard]] Kind kindOrNone(const std::filesystem::path &path, int from = AT_FDCWD);
/// Size in bytes of what stands at `path` (links followed), absent if it cannot be had.
[[nodiscard]] std::optional<std::int64_t> size(const std::filesystem::path &path);

/// A file descriptor that is closed at every way out; an error of that close is ignored.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    Descriptor(Descriptor &&other) noexcept;
    Descriptor &operator=(Descriptor &&other) noexcept;
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor();

    [[nodiscard]] int get() const { return m_descriptor; }
    /// Gives the descriptor away; the caller closes it.
    [[nodiscard]] int release();

private:
    int m_descriptor = -1;
};

/// A folder that is held open. Work in it goes by names in `descriptor`; the path is for messages and results.
struct Folder {
    Descriptor descriptor;
    std::filesystem::path path;
};

enum class Links : std::uint8_t { Follow, Refuse };
/// Opens a regular file; anything else, a pipe or a folder, is refused, never opened and never waited for. A relative
/// path is counted from the open folder `from`.
[[nodiscard]] Descriptor openForReading(
    const std::filesystem::path &path, Links links = Links::Follow, int from = AT_FDCWD);
/// Reads until `buffer` is full or the file ends; returns the bytes read.
[[nodiscard]] std::size_t readFully(int descriptor, std::span<char> buffer);
/// The whole file if it is a regular one and smaller than `limit` bytes, else absent. Never throws.
[[nodiscard]] std::optional<QByteArray> readBelow(const std::filesystem::path &path, std::int64_t limit);

/// Makes a file that must not exist, mode 0644, following no link at its name. A relative path is counted from the open
/// folder `from`.
[[nodiscard]] Descriptor createExclusively(const std::filesystem::path &path, int from = AT_FDCWD);
/// Writes all bytes, through short writes and interruptions.
void writeFully(int descriptor, std::span<const char> bytes);
/// Returns when the file's data is on the medium.
void synchronise(int descriptor);

/// Makes `folder` and those above it that are missing.
void makeFolders(const std::filesystem::path &folder);
/// Returns when the names in `folder` are on the medium, where the file system can do that.
void synchroniseFolder(const std::filesystem::path &folder);
/// Brings a new name in the folder to the medium, where the file system can do that. By itself it gets there in some
/// seconds, and the file is whole without it, so a failure is none of the caller's.
void synchroniseName(const Folder &folder);
void synchroniseName(const std::filesystem::path &file);

/// A new UUID's text, in capitals.
[[nodiscard]] std::string newIdentifier();
/// A hidden name, new at each call, for a file or a folder on its way to its final name in the same folder.
[[nodiscard]] std::filesystem::path temporaryName(const QByteArray &purpose = {});
/// Whether a writer returns when the medium has the bytes, or leaves that to synchroniseVolume().
enum class Durability : std::uint8_t { Now, Later };
/// Makes a file of these bytes, as createExclusively() does. On failure what was written of it stays.
void writeNew(const std::filesystem::path &file, std::span<const char> bytes, Durability durability, int from);
enum class Placing : std::uint8_t {
    Replace, ///< what stands at the name goes
    Create ///< fails with EEXIST if the name is taken, be it by a dangling link
};
/// Writes the file `name` in the open folder `folder`.
using FileMaker = std::function<void(const std::filesystem::path &name, int folder)>;
/// Has `make` write a file of a hidden name in the folder, and gives it the name `name` in one step: whatever fails, no
/// half of a file has that name and none stays hidden. A failure of the system names the file by its final path.
void place(const Folder &folder, const std::filesystem::path &name, Placing placing, const FileMaker &make);
/// Replaces a file of the computer by one of these bytes in one step: whatever fails, what is there is the old file or
/// the complete new one, and no temporary file stays. Links on the way to it are followed.
void writeAtomically(const std::filesystem::path &path, std::span<const char> bytes);
/// Returns when all that was written to the volume of the folder is on the medium; for thousands of small files this
/// takes a fraction of the time of one call for each. `name` should be one of them, because drivers in user space
/// (FUSE) write out what they hold only when they are asked for a file; where it is none, the folder itself is asked.
void synchroniseVolume(const Folder &folder, const std::filesystem::path &name);

} // namespace Files
