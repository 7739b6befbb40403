// A regular file as TagLib reads it: never written, with limits that keep damaged or hostile bytes cheap.
//
// Past a limit the file merely seems to end, which every parser of TagLib is prepared for:
// - one block has at most 16 MiB (the largest picture taken is 10,000,000 bytes, 13.4 MB in base64);
// - a file is read in at most 100,000 blocks and 48 MiB; what circles or searches without end stops there;
// - a parser that calls itself for nested pieces stops when it is 256 KiB deep in the stack.
//
// ID3v2 tags and MP4 covers are not handed to TagLib at all: it would read each picture twice, inflate compressed
// frames without a limit and nest chapters without one. They seem to be empty there; where they are is noted.
#pragma once

#include "platform/files/RegularFile.h"

#include <tiostream.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// The body of an ID3v2 tag and what its header says of it.
struct Id3v2Body {
    std::int64_t position = 0;
    std::int64_t length = 0;
    unsigned version = 0; ///< the major one: 2, 3 or 4
    unsigned flags = 0;
};

/// The content of an MP4 atom "covr".
struct Mp4CoverBody {
    std::int64_t position = 0;
    std::int64_t length = 0;
};

class BoundedStream final : public TagLib::IOStream {
public:
    /// `file` must outlive the stream. Made and read in one thread, in functions called from the same one.
    explicit BoundedStream(const RegularFile &file);

    /// The bytes at `position`: at most `window` of them, fewer at the file's end; valid until the next reading.
    /// Not counted against the limits.
    [[nodiscard]] std::span<const char> at(std::int64_t position, std::size_t length);

    [[nodiscard]] const RegularFile &file() const { return m_file; }
    [[nodiscard]] const std::vector<Id3v2Body> &id3v2Bodies() const { return m_id3v2Bodies; }
    [[nodiscard]] const std::vector<Mp4CoverBody> &mp4CoverBodies() const { return m_mp4CoverBodies; }
    /// Where the content of the atom "stsd" is of which TagLib read the sound's properties; 0 where it read none.
    [[nodiscard]] std::int64_t mp4Descriptions() const { return m_mp4Descriptions; }

    TagLib::FileName name() const override { return ""; }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void seek(long offset, Position from) override;
    long tell() const override { return m_position; }
    long length() override { return m_file.size(); }
    bool readOnly() const override { return true; }
    bool isOpen() const override { return true; }

    void writeBlock(const TagLib::ByteVector &) override { }
    void insert(const TagLib::ByteVector &, unsigned long, unsigned long) override { }
    void removeBlock(unsigned long, unsigned long) override { }
    void truncate(long) override { }

    static constexpr std::size_t window = 8'192;

private:
    [[nodiscard]] bool isExhausted() const;
    [[nodiscard]] bool isWithheld(unsigned long length);
    void checkHeader(const TagLib::ByteVector &block, unsigned long length);

    const RegularFile &m_file;
    std::int64_t m_position = 0;
    std::int64_t m_bytesLeft = 48LL << 20;
    int m_blocksLeft = 100'000;
    std::uintptr_t m_stackBase;

    Id3v2Body m_pendingTag {-1}; ///< the tag whose header was the last thing read
    std::vector<std::int64_t> m_coverHeaders; ///< positions behind the headers of atoms "covr"
    std::vector<Id3v2Body> m_id3v2Bodies;
    std::vector<Mp4CoverBody> m_mp4CoverBodies;
    std::int64_t m_mp4Descriptions = 0;

    /// A part of the file in memory. There are several, because parsers go to and fro between a file's ends.
    struct Window {
        std::int64_t start = 0;
        std::size_t length = 0;
        unsigned lastUse = 0;
        std::array<char, window> bytes;
    };
    [[nodiscard]] Window &windowFor(std::int64_t position, std::size_t length);
    std::array<Window, 3> m_windows;
    unsigned m_uses = 0;
};
