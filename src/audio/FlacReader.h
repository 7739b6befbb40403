// The bytes of a file's metadata blocks, read through one bounded cursor. Used by the FLAC reader alone.
#pragma once

#include "platform/RegularFile.h"

#include <QByteArray>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

/// The file behind the cursor, with a small read-ahead window. Throws std::system_error where it cannot be opened.
class FlacFile {
public:
    explicit FlacFile(const std::filesystem::path &file)
        : m_file(RegularFile::openOrThrow(file))
    {
    }
    FlacFile(const FlacFile &) = delete;
    FlacFile &operator=(const FlacFile &) = delete;

    [[nodiscard]] std::uint64_t size() const { return std::uint64_t(m_file.size()); }
    /// `count` bytes at `position`, at most windowBytes; fewer where the file ends. Valid until the next call.
    [[nodiscard]] std::span<const unsigned char> peek(std::uint64_t position, std::size_t count);
    /// `count` bytes at `position`; fewer where the file ends. The caller has held `count` against size().
    [[nodiscard]] QByteArray bytes(std::uint64_t position, std::size_t count);
    /// The same as a view, valid until the next call.
    [[nodiscard]] QByteArrayView view(std::uint64_t position, std::size_t count);
    /// Throws if the disk refused a read: what looked like the file's end was none.
    void requireWhole() const;

private:
    static constexpr std::size_t windowBytes = 4096;

    RegularFile m_file;
    FileWindow m_window {m_file, windowBytes, 0};
    QByteArray m_long; ///< what the last view() was too long for the window
};

enum class ByteOrder : std::uint8_t { Little, Big };

/// Walks the body of one block. Nothing is allocated by a declared length alone: lengths are held against remaining().
class BlockCursor {
public:
    BlockCursor(FlacFile &file, std::uint64_t begin, std::uint64_t length)
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
    FlacFile &m_file;
    std::uint64_t m_position;
    std::uint64_t m_end;
};
