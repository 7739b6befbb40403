#include "media/files/AudioContent.h"

#include "media/files/AudioFrames.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace {

using Kind = AudioContent::Kind;

constexpr int maxTags = 4;
constexpr std::size_t id3HeaderSize = 10;
constexpr std::size_t oggHeaderSize = 27; // before the segment table (RFC 3533, section 6)

std::string_view textAt(BoundedStream &stream, std::int64_t position, std::size_t length)
{
    const std::span<const char> bytes = stream.at(position, length);
    return {bytes.data(), bytes.size()};
}

/// The position behind the ID3v2 tags at the file's beginning (ID3v2.4 structure, section 3.1).
std::int64_t endOfTags(BoundedStream &stream)
{
    std::int64_t position = 0;
    for (int tags = 0; tags < maxTags; ++tags) {
        const std::string_view header = textAt(stream, position, id3HeaderSize);
        if (header.size() < id3HeaderSize || !header.starts_with("ID3")) {
            break;
        }
        std::int64_t size = 0;
        for (const char byte : header.substr(6)) {
            size = size << 7 | (byte & 0x7F);
        }
        const bool hasFooter = (static_cast<unsigned char>(header[5]) & 0x10) != 0;
        position += std::int64_t(id3HeaderSize) + size + (hasFooter ? std::int64_t(id3HeaderSize) : 0);
    }
    return position;
}

Kind oggKind(BoundedStream &stream, std::int64_t position)
{
    const std::string_view page = textAt(stream, position, oggHeaderSize);
    if (page.size() < oggHeaderSize) {
        return Kind::Unknown;
    }
    const auto segments = static_cast<unsigned char>(page.back());
    const std::string_view packet = textAt(stream, position + std::int64_t(oggHeaderSize) + segments, 8);
    return packet.starts_with("\x01vorbis") ? Kind::OggVorbis
        : packet.starts_with("OpusHead")    ? Kind::OggOpus
        : packet.starts_with("\x7F"
                             "FLAC")
        ? Kind::OggFlac
        : packet.starts_with("Speex   ") ? Kind::OggSpeex
                                         : Kind::Unknown;
}

/// Whether a frame is there, and another one or the file's end behind it.
bool isFrameAt(BoundedStream &stream, AudioFrames::Kind kind, std::int64_t position)
{
    const auto frame = AudioFrames::frameAt(kind, stream.at(position, AudioFrames::headerSize));
    const std::int64_t end = frame ? position + std::int64_t(frame->bytes) : 0;
    const auto next = frame ? AudioFrames::frameAt(kind, stream.at(end, AudioFrames::headerSize)) : std::nullopt;
    return frame && (end == stream.length() || (next && next->sampleRate == frame->sampleRate));
}

Kind kindAt(BoundedStream &stream, std::int64_t position)
{
    const std::string_view head = textAt(stream, position, 12);
    if (head.starts_with("OggS")) {
        return oggKind(stream, position);
    }
    if (head.size() == 12 && head.substr(4, 4) == "ftyp") {
        return Kind::Mp4;
    }
    if (head.starts_with("RIFF") && head.ends_with("WAVE")) {
        return Kind::Wave;
    }
    if (head.starts_with("FORM") && (head.ends_with("AIFF") || head.ends_with("AIFC"))) {
        return Kind::Aiff;
    }
    if (head.starts_with("fLaC")) {
        return Kind::Flac;
    }
    if (head.starts_with("MAC ")) {
        return Kind::Ape;
    }
    if (head.starts_with("wvpk")) {
        return Kind::WavPack;
    }
    if (head.starts_with("MPCK") || head.starts_with("MP+")) {
        return Kind::Musepack;
    }
    if (isFrameAt(stream, AudioFrames::Kind::Adts, position)) { // a frame of FLAC begins like one of ADTS
        return Kind::Adts;
    }
    // `head` is no longer valid here.
    const std::span<const char> header = stream.at(position, AudioFrames::headerSize);
    return AudioFrames::frameAt(AudioFrames::Kind::Mpeg, header) ? Kind::Mpeg : Kind::Unknown;
}

/// Formats that may begin with padding or junk, or with any atom (MP4).
Kind kindByExtension(std::string_view extension)
{
    std::string lower(extension);
    std::transform(lower.begin(), lower.end(), lower.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return lower == ".mp3" ? Kind::Mpeg
        : lower == ".aac"  ? Kind::Adts
        : lower == ".m4a"  ? Kind::Mp4
        : lower == ".alac" ? Kind::Mp4
        : lower == ".ape"  ? Kind::Ape
                           : Kind::Unknown;
}

} // namespace

AudioContent audioContent(BoundedStream &stream, std::string_view extension)
{
    const std::int64_t start = endOfTags(stream);
    Kind kind = kindAt(stream, start);
    if (kind == Kind::Unknown) {
        kind = kindByExtension(extension);
    }
    // TagLib would search a large file without a single frame for seconds.
    const bool isMpeg = kind == Kind::Mpeg;
    const AudioFrames::Kind frames = isMpeg ? AudioFrames::Kind::Mpeg : AudioFrames::Kind::Adts;
    if ((isMpeg || kind == Kind::Adts) && !isFrameAt(stream, frames, start)
        && !AudioFrames::isAnyNear(stream.file(), frames, start)) {
        kind = start > 0 ? Kind::Id3v2 : Kind::Unknown;
    }
    return {kind, start};
}
