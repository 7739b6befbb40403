// An open regular file, read at given positions; a window on it for those who walk through it in small steps.
//
// What is no regular file (a folder, a pipe, a device) is never opened for its content, so nothing can hang on it.
// Nothing throws but openOrThrow(); one object belongs to one thread.
#pragma once

#include "platform/files/Files.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <system_error>

class RegularFile {
public:
    /// Absent if `path` names no regular file or it cannot be opened. Links are followed.
    [[nodiscard]] static std::optional<RegularFile> open(const std::filesystem::path &path);
    /// The same; throws std::system_error with the reason.
    [[nodiscard]] static RegularFile openOrThrow(const std::filesystem::path &path);

    /// Onward, or small parts here and there: then the disk is not asked for what lies behind them.
    enum class Reading : std::uint8_t { Onward, Scattered };
    /// How it will be read, from the beginning onward unless told.
    void expect(Reading reading) const;

    /// Bytes, as they were when the file was opened.
    [[nodiscard]] std::int64_t size() const { return m_size; }
    /// Fills `buffer` from `position`; returns the bytes read, fewer at the file's end or after an error of the disk.
    [[nodiscard]] std::size_t readAt(std::int64_t position, std::span<char> buffer) const;
    /// The reason why the disk refused a read so far; no error if none was refused.
    [[nodiscard]] std::error_code failure() const { return m_failure; }
    /// How often so far this thread could not open a file or read what there is of it: whoever wants to know whether
    /// what was read is all that the file says compares two answers.
    [[nodiscard]] static std::uint64_t refusals();

private:
    RegularFile(Files::Descriptor descriptor, std::int64_t size)
        : m_descriptor(std::move(descriptor))
        , m_size(size)
    {
    }

    Files::Descriptor m_descriptor;
    std::int64_t m_size = 0;
    mutable std::error_code m_failure;
};

/// Holds a part of a file in memory and moves on when other bytes are asked for.
class FileWindow {
public:
    /// Holds `capacity` bytes; when it moves it keeps up to `kept` bytes before the ones asked for, for those who go
    /// back from time to time. `file` must outlive it.
    FileWindow(const RegularFile &file, std::size_t capacity, std::size_t kept);

    /// The bytes at `position`: at most capacity - kept of them, fewer at the file's end; valid until the next call.
    [[nodiscard]] std::span<const char> at(std::int64_t position, std::size_t length);

private:
    const RegularFile &m_file;
    std::size_t m_capacity;
    std::size_t m_kept;
    std::unique_ptr<char[]> m_bytes;
    std::int64_t m_start = 0;
    std::size_t m_length = 0;
};
