#include "media/files/MediaAsset.h"

#include "media/files/AudioContent.h"
#include "media/files/AudioFrames.h"
#include "media/files/OggReader.h"
#include "media/files/StreamProbe.h"
#include "media/files/TagFile.h"
#include "media/files/TagItems.h"
#include "platform/files/RegularFile.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace {

using Kind = AudioContent::Kind;

// Beyond these a header is damaged; callers may turn what is below into whole numbers.
constexpr double highestSampleRate = 100e6; // Hz
constexpr double maxSeconds = 100e6; // three years

} // namespace

/// One opening serves all questions. Tags are turned into items only when these are asked for, because not every
/// caller does; TagLib's object may look at its stream and its file as long as it lives.
struct MediaAsset::Reading {
    explicit Reading(std::filesystem::path location)
        : path(std::move(location))
    {
    }

    void open();
    void read();
    void askTagLib();
    void askProbe();
    [[nodiscard]] std::vector<MetadataItem> items();
    [[nodiscard]] bool isOgg() const { return content.kind == Kind::OggVorbis || content.kind == Kind::OggOpus; }

    std::filesystem::path path;
    bool isOpened = false;
    std::optional<RegularFile> file;
    std::unique_ptr<BoundedStream> stream;
    AudioContent content;
    std::unique_ptr<TagLib::File> tags;
    std::vector<MetadataItem> probedItems; ///< where no other reader knows the file
    MediaFacts facts;
};

void MediaAsset::Reading::open()
{
    if (std::exchange(isOpened, true)) {
        return;
    }
    try {
        read();
    } catch (const std::exception &) {
        tags.reset(); // out of memory over what a damaged file declares: it stays as unknown as it is by now
    }
    if (facts.stream && facts.stream->sampleRate > highestSampleRate) {
        facts.stream.reset();
    }
    if (!(facts.seconds <= maxSeconds)) {
        facts.seconds = 0;
    }
}

void MediaAsset::Reading::read()
{
    file = RegularFile::open(path);
    if (!file || file->size() == 0) {
        return;
    }
    file->expect(RegularFile::Reading::Scattered);
    stream = std::make_unique<BoundedStream>(*file);
    content = audioContent(*stream, path.extension().native());
    if (isOgg()) {
        facts = OggReader::facts(*stream, content);
    } else {
        askTagLib();
    }
    if (!facts.stream || facts.seconds <= 0) {
        askProbe();
    }
}

void MediaAsset::Reading::askTagLib()
{
    tags = TagFile::open(*stream, content.kind);
    if (tags != nullptr) {
        facts = TagFile::facts(*tags, *stream);
    }
    if (content.kind == Kind::Adts) {
        facts.seconds = AudioFrames::seconds(stream->file(), AudioFrames::Kind::Adts, content.start).value_or(0);
    } else if (tags != nullptr && TagFile::isLengthGuessed(*tags)
        && AudioFrames::hasVariableBitRate(stream->file(), content.start)) {
        facts.seconds
            = AudioFrames::seconds(stream->file(), AudioFrames::Kind::Mpeg, content.start).value_or(facts.seconds);
    }
}

void MediaAsset::Reading::askProbe()
{
    const std::int64_t start = std::min(content.start, stream->file().size());
    file->expect(RegularFile::Reading::Onward);
    StreamProbe::Answer answer
        = StreamProbe::probe(stream->file(), start, content.kind == Kind::Adts ? "aac" : nullptr);
    if (!facts.stream) {
        facts.stream = answer.facts.stream;
    }
    if (facts.seconds <= 0) {
        facts.seconds = answer.facts.seconds;
    }
    if (tags == nullptr && !isOgg()) {
        probedItems = std::move(answer.items);
    }
}

std::vector<MetadataItem> MediaAsset::Reading::items()
{
    if (tags != nullptr) {
        return tagItems(*tags, *stream);
    }
    return isOgg() ? OggReader::items(stream->file(), content) : probedItems;
}

MediaAsset::MediaAsset(std::filesystem::path file)
    : m_reading(std::make_unique<Reading>(std::move(file)))
{
}

MediaAsset::~MediaAsset() = default;
MediaAsset::MediaAsset(MediaAsset &&) noexcept = default;
MediaAsset &MediaAsset::operator=(MediaAsset &&) noexcept = default;

std::optional<double> MediaAsset::durationSeconds()
{
    m_reading->open();
    return m_reading->facts.seconds > 0 ? std::optional(m_reading->facts.seconds) : std::nullopt;
}

std::optional<AudioStream> MediaAsset::firstAudioStream()
{
    m_reading->open();
    return m_reading->facts.stream;
}

std::vector<MetadataItem> MediaAsset::metadata()
{
    m_reading->open();
    try {
        return m_reading->items();
    } catch (const std::exception &) {
        return {};
    }
}
