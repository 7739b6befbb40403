// The bytes of a file's metadata blocks, read through one bounded cursor. Used by the FLAC reader alone.
#pragma once

#include "platform/Files.h"

#include <QByteArray>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

/// A regular file with a small read-ahead window. Throws std::system_error where the file cannot be opened or read.
class WindowedFile {
public:
    explicit WindowedFile(const std::filesystem::path &file);

    [[nodiscard]] std::uint64_t size() const { return m_size; }
    /// `count` bytes at `position`, at most windowBytes; fewer where the file ends. Valid until the next call.
    [[nodiscard]] std::span<const unsigned char> peek(std::uint64_t position, std::size_t count);
    /// `count` bytes at `position`; fewer where the file ends. The caller has held `count` against size().
    [[nodiscard]] QByteArray bytes(std::uint64_t position, std::size_t count);
    /// The same as a view, valid until the next call.
    [[nodiscard]] QByteArrayView view(std::uint64_t position, std::size_t count);

    static constexpr std::size_t windowBytes = 4096;

private:
    std::size_t readAt(std::uint64_t position, std::span<char> buffer);

    Files::Descriptor m_file;
    std::uint64_t m_size = 0;
    std::uint64_t m_windowStart = 0;
    std::size_t m_windowFill = 0;
    std::array<char, windowBytes> m_window; // as far as m_windowFill says
    QByteArray m_long; ///< what the last view() was too long for the window
};

enum class ByteOrder : std::uint8_t { Little, Big };

/// Walks the body of one block. Nothing is allocated by a declared length alone: lengths are held against remaining().
class BlockCursor {
public:
    BlockCursor(WindowedFile &file, std::uint64_t begin, std::uint64_t length)
        : m_file(file)
        , m_position(begin)
        , m_end(begin + length)
    {
    }

    [[nodiscard]] std::uint64_t remaining() const { return m_end - m_position; }
    /// The next four bytes as a number, or absent, without moving, where fewer remain.
    [[nodiscard]] std::optional<std::uint32_t> integer(ByteOrder order);
    /// Moves on by `count` bytes, or not at all where fewer remain; true if it moved.
    bool skip(std::uint64_t count);
    /// The next `count` bytes, or absent, without moving, where fewer remain.
    [[nodiscard]] std::optional<QByteArray> take(std::uint64_t count);
    /// The same as a view, valid until the file is next read.
    [[nodiscard]] std::optional<QByteArrayView> takeView(std::uint64_t count);

private:
    WindowedFile &m_file;
    std::uint64_t m_position;
    std::uint64_t m_end;
};
