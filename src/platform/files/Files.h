// Files of the computer and the device: what is there, and reading with limits.
//
// All functions are blocking, keep no state and may run on any thread; failures are std::system_error unless a comment
// says otherwise.
#pragma once

#include "platform/files/PathText.h"

#include <QByteArray>

#include <fcntl.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>

namespace Files {

/// Throws the system's failure with this number and, where it has one, the path that it concerns.
[[noreturn]] void throwFailure(int error);
[[noreturn]] void throwFailure(int error, const std::filesystem::path &path);

/// Links are followed; any failure of the query counts as "no".
[[nodiscard]] bool exists(const std::filesystem::path &path);
[[nodiscard]] bool isDirectory(const std::filesystem::path &path);
/// What is at a path itself: a link is not followed.
enum class Kind : std::uint8_t { None, File, Folder, Link, Other };
/// None where nothing exists; throws where the disk does not say. A relative path is counted from the open folder
/// `from`.
[[nodiscard]] Kind kindOf(const std::filesystem::path &path, int from = AT_FDCWD);
/// None also where the disk does not say.
[[nodiscard]] Kind kindOrNone(const std::filesystem::path &path, int from = AT_FDCWD);
/// Size in bytes of what is at `path` (links followed), absent if it cannot be had.
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
/// All of a regular file smaller than `limit` bytes; otherwise, or if it ends early, throws.
[[nodiscard]] QByteArray readWhole(
    const std::filesystem::path &path, std::int64_t limit = std::numeric_limits<std::int64_t>::max());
/// The same, absent where it throws.
[[nodiscard]] std::optional<QByteArray> readBelow(const std::filesystem::path &path, std::int64_t limit);

} // namespace Files
