#include "media/files/TagFile.h"

#include "media/files/Mp4SampleEntry.h"

#include <aifffile.h>
#include <apefile.h>
#include <flacfile.h>
#include <mp4file.h>
#include <mpcfile.h>
#include <mpegfile.h>
#include <oggflacfile.h>
#include <speexfile.h>
#include <wavfile.h>
#include <wavpackfile.h>

#include <id3v2framefactory.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace TagFile {

namespace {

using Kind = AudioContent::Kind;

// Format codes of "fmt " (RFC 2361): only these two hold plain samples.
constexpr int wavePcm = 1;
constexpr int waveFloat = 3;

AudioStream plainStream(int sampleRate, int bits)
{
    return {double(sampleRate), 0, 0, std::uint32_t(std::max(0, bits))};
}

/// TagLib takes every sample entry at its word: its rate, and that "mp4a" holds AAC.
AudioStream mp4Stream(const TagLib::MP4::Properties &properties, BoundedStream &stream)
{
    const std::span<const char> descriptions = stream.at(stream.mp4Descriptions(), BoundedStream::window);
    const bool isKnown = stream.mp4Descriptions() > 0;
    const auto entry = isKnown ? mp4EntryStream({descriptions.data(), qsizetype(descriptions.size())}) : std::nullopt;
    if (entry && entry->sampleRate > 0) {
        return *entry;
    }
    switch (properties.codec()) {
    case TagLib::MP4::Properties::ALAC:
        return appleLosslessStream(properties.sampleRate(), std::uint32_t(std::max(0, properties.bitsPerSample())));
    case TagLib::MP4::Properties::AAC:
        return {double(properties.sampleRate()), AudioFormat::mpeg4Aac, 0, 0};
    case TagLib::MP4::Properties::Unknown:
        break;
    }
    return plainStream(properties.sampleRate(), 0);
}

bool holdsPlainSamples(const TagLib::RIFF::AIFF::Properties &properties)
{
    if (!properties.isAiffC()) {
        return true;
    }
    static constexpr std::array<std::string_view, 10> types {
        "NONE", "twos", "sowt", "raw ", "in24", "in32", "fl32", "FL32", "fl64", "FL64"};
    const TagLib::ByteVector type = properties.compressionType();
    return std::find(types.begin(), types.end(), std::string_view(type.data(), type.size())) != types.end();
}

/// Bits of a lossless stream's samples, 0 for a lossy stream.
int plainBits(const TagLib::AudioProperties &any)
{
    if (const auto *const flac = dynamic_cast<const TagLib::FLAC::Properties *>(&any)) {
        return flac->bitsPerSample();
    }
    if (const auto *const wave = dynamic_cast<const TagLib::RIFF::WAV::Properties *>(&any)) {
        return wave->format() == wavePcm || wave->format() == waveFloat ? wave->bitsPerSample() : 0;
    }
    if (const auto *const aiff = dynamic_cast<const TagLib::RIFF::AIFF::Properties *>(&any)) {
        return holdsPlainSamples(*aiff) ? aiff->bitsPerSample() : 0;
    }
    if (const auto *const ape = dynamic_cast<const TagLib::APE::Properties *>(&any)) {
        return ape->bitsPerSample();
    }
    const auto *const wavPack = dynamic_cast<const TagLib::WavPack::Properties *>(&any);
    return wavPack != nullptr && wavPack->isLossless() ? wavPack->bitsPerSample() : 0;
}

template <typename File> std::unique_ptr<TagLib::File> make(BoundedStream &stream)
{
    return std::make_unique<File>(&stream, true, TagLib::AudioProperties::Average);
}

std::unique_ptr<TagLib::File> makeFile(BoundedStream &stream, Kind kind)
{
    TagLib::ID3v2::FrameFactory *const frames = TagLib::ID3v2::FrameFactory::instance();
    switch (kind) {
    case Kind::Mpeg:
        return std::make_unique<TagLib::MPEG::File>(&stream, frames);
    case Kind::Adts:
    case Kind::Id3v2:
        // The tags around raw AAC are those of MPEG audio; of the sound TagLib knows nothing.
        return std::make_unique<TagLib::MPEG::File>(&stream, frames, false);
    case Kind::Flac:
        return std::make_unique<TagLib::FLAC::File>(&stream, frames);
    case Kind::Mp4:
        return make<TagLib::MP4::File>(stream);
    case Kind::OggFlac:
        return make<TagLib::Ogg::FLAC::File>(stream);
    case Kind::OggSpeex:
        return make<TagLib::Ogg::Speex::File>(stream);
    case Kind::Wave:
        return make<TagLib::RIFF::WAV::File>(stream);
    case Kind::Aiff:
        return make<TagLib::RIFF::AIFF::File>(stream);
    case Kind::Ape:
        return make<TagLib::APE::File>(stream);
    case Kind::WavPack:
        return make<TagLib::WavPack::File>(stream);
    case Kind::Musepack:
        return make<TagLib::MPC::File>(stream);
    case Kind::OggVorbis:
    case Kind::OggOpus:
    case Kind::Unknown:
        break;
    }
    return nullptr;
}

} // namespace

std::unique_ptr<TagLib::File> open(BoundedStream &stream, Kind kind)
{
    std::unique_ptr<TagLib::File> file = makeFile(stream, kind);
    return file != nullptr && file->isValid() ? std::move(file) : nullptr;
}

MediaFacts facts(const TagLib::File &file, BoundedStream &stream)
{
    const TagLib::AudioProperties *const any = file.audioProperties();
    if (any == nullptr) {
        return {};
    }
    const auto *const mp4 = dynamic_cast<const TagLib::MP4::Properties *>(any);
    const AudioStream found
        = mp4 != nullptr ? mp4Stream(*mp4, stream) : plainStream(any->sampleRate(), plainBits(*any));
    if (found.sampleRate <= 0) {
        return {};
    }
    return {std::max(0, any->lengthInMilliseconds()) / 1000.0, found};
}

bool isLengthGuessed(const TagLib::File &file)
{
    const auto *const properties = dynamic_cast<const TagLib::MPEG::Properties *>(file.audioProperties());
    return properties != nullptr && properties->xingHeader() == nullptr;
}

} // namespace TagFile
