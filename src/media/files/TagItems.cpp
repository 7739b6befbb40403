#include "media/files/TagItems.h"

#include "media/files/Id3v2.h"

#include <aifffile.h>
#include <apefile.h>
#include <apetag.h>
#include <flacfile.h>
#include <id3v1tag.h>
#include <infotag.h>
#include <mp4file.h>
#include <mpcfile.h>
#include <mpegfile.h>
#include <oggflacfile.h>
#include <speexfile.h>
#include <wavfile.h>
#include <wavpackfile.h>
#include <xiphcomment.h>

#include <algorithm>
#include <iterator>
#include <ranges>

namespace {

/// TagLib holds UTF-16 units, one in each wide character.
QString toText(const TagLib::String &string)
{
    auto length = qsizetype(string.size());
    const wchar_t *const units = string.toCWString();
    while (length > 0 && units[length - 1] == 0) {
        --length;
    }
    QString text(length, Qt::Uninitialized);
    std::transform(units, units + length, text.data(), [](wchar_t unit) { return QChar(char16_t(unit)); });
    return text;
}

QStringList toTexts(const TagLib::StringList &values)
{
    QStringList texts;
    for (const TagLib::String &value : values) {
        texts.push_back(toText(value));
    }
    return texts;
}

/// Collects the items of all tags of one file. Tags are added from the one that counts least to the one that counts
/// most; their pictures are put in the opposite order.
class Collector {
public:
    explicit Collector(BoundedStream &stream)
        : m_stream(stream)
    {
    }

    void add(const TagLib::ID3v1::Tag &tag);
    void add(const TagLib::APE::Tag &tag);
    void add(const TagLib::Ogg::XiphComment &tag, const TagLib::List<TagLib::FLAC::Picture *> &blocks);
    void add(const TagLib::MP4::Tag &tag);
    void add(const TagLib::RIFF::Info::Tag &tag);
    void addId3v2();

    [[nodiscard]] std::vector<MetadataItem> take()
    {
        std::vector<Picture> pictures;
        for (std::vector<Picture> &tag : m_pictures | std::views::reverse) {
            std::move(tag.begin(), tag.end(), std::back_inserter(pictures));
        }
        appendPictures(m_items, pictures, m_stream.file());
        return std::move(m_items);
    }

private:
    /// `bytes` stay as they are as long as the collector.
    [[nodiscard]] Picture held(const TagLib::ByteVector &bytes, bool isFrontCover)
    {
        m_held.push_back(bytes); // shares the bytes
        return {.isFrontCover = isFrontCover, .inReader = {bytes.data(), bytes.size()}};
    }

    BoundedStream &m_stream;
    std::vector<MetadataItem> m_items;
    std::vector<std::vector<Picture>> m_pictures;
    std::vector<TagLib::ByteVector> m_held;
};

// ID3v1 cannot tell an empty field from none.
void Collector::add(const TagLib::ID3v1::Tag &tag)
{
    const auto number
        = [](unsigned value) { return value == 0 ? TagLib::String() : TagLib::String::number(int(value)); };
    for (const TextField &field : textFields()) {
        const TagLib::String text = field.identifier == TagId::title ? tag.title()
            : field.identifier == TagId::artist                      ? tag.artist()
            : field.identifier == TagId::album                       ? tag.album()
            : field.identifier == TagId::trackNumber                 ? number(tag.track())
            : field.identifier == TagId::date                        ? number(tag.year())
                                                                     : TagLib::String();
        if (!text.isEmpty()) {
            m_items.push_back(textItem(field, {toText(text)}));
        }
    }
}

void Collector::addId3v2()
{
    for (const Id3v2Body &body : m_stream.id3v2Bodies()) {
        Id3v2::Content content = Id3v2::read(m_stream, body);
        std::move(content.texts.begin(), content.texts.end(), std::back_inserter(m_items));
        m_pictures.push_back(std::move(content.pictures));
    }
}

void Collector::add(const TagLib::APE::Tag &tag)
{
    const TagLib::APE::ItemListMap &items = tag.itemListMap();
    for (const TextField &field : textFields()) {
        for (const char *const name : field.ape) {
            const auto item = name != nullptr ? items.find(name) : items.end();
            if (item != items.end() && item->second.type() == TagLib::APE::Item::Text) {
                m_items.push_back(textItem(field, toTexts(item->second.values())));
                break;
            }
        }
    }
    std::vector<Picture> pictures;
    for (const auto &[key, item] : items) {
        if (item.type() == TagLib::APE::Item::Binary && key.startsWith("COVER ART")) {
            // A file name and a NUL come before the picture's bytes.
            const TagLib::ByteVector value = item.binaryData();
            const int nameEnd = value.find('\0');
            if (nameEnd >= 0) {
                pictures.push_back(held(value.mid(unsigned(nameEnd) + 1), key == "COVER ART (FRONT)"));
            }
        }
    }
    m_pictures.push_back(std::move(pictures));
}

void Collector::add(const TagLib::Ogg::XiphComment &tag, const TagLib::List<TagLib::FLAC::Picture *> &blocks)
{
    const TagLib::Ogg::FieldListMap &comments = tag.fieldListMap();
    for (const TextField &field : textFields()) {
        for (const char *const name : field.comments) {
            const auto values = name != nullptr ? comments.find(name) : comments.end();
            if (values != comments.end()) {
                m_items.push_back(textItem(field, toTexts(values->second)));
                break;
            }
        }
    }
    std::vector<Picture> pictures;
    for (const TagLib::FLAC::Picture *const picture : blocks) {
        if (picture->mimeType() != "-->") { // that one would be a link
            pictures.push_back(held(picture->data(), picture->type() == TagLib::FLAC::Picture::FrontCover));
        }
    }
    m_pictures.push_back(std::move(pictures));
}

/// The pictures in an atom "covr", each in an atom "data" behind eight bytes of type and language.
std::vector<Picture> mp4Covers(BoundedStream &stream, const Mp4CoverBody &body)
{
    constexpr std::int64_t dataHeaderSize = 16;
    constexpr std::size_t maxCovers = 64;
    std::vector<Picture> covers;
    const std::int64_t end = std::min<std::int64_t>(body.position + body.length, stream.length());
    for (std::int64_t position = body.position; end - position > dataHeaderSize && covers.size() < maxCovers;) {
        const std::span<const char> header = stream.at(position, std::size_t(dataHeaderSize));
        if (header.size() < std::size_t(dataHeaderSize)) {
            break;
        }
        const std::int64_t length = TagLib::ByteVector(header.data(), 4).toUInt();
        if (length < dataHeaderSize || length > end - position) {
            break;
        }
        if (std::string_view(header.data() + 4, 4) == "data") {
            // All are covers, without types: the first counts.
            covers.push_back({.inFile = {position + dataHeaderSize, length - dataHeaderSize}});
        }
        position += length;
    }
    return covers;
}

void Collector::add(const TagLib::MP4::Tag &tag)
{
    const TagLib::MP4::ItemMap &items = tag.itemMap();
    for (const TextField &field : textFields()) {
        const auto item = items.find(field.mp4);
        if (item == items.end()) {
            continue;
        }
        if (field.identifier != TagId::trackNumber && field.identifier != TagId::discNumber) {
            m_items.push_back(textItem(field, toTexts(item->second.toStringList())));
            continue;
        }
        const TagLib::MP4::Item::IntPair pair = item->second.toIntPair();
        if (pair.first > 0) { // 0 is how this format says that there is no number
            const QString number = QString::number(pair.first);
            m_items.push_back(
                textItem(field, {pair.second > 0 ? number + QLatin1Char('/') + QString::number(pair.second) : number}));
        }
    }
    for (const Mp4CoverBody &body : m_stream.mp4CoverBodies() | std::views::reverse) {
        m_pictures.push_back(mp4Covers(m_stream, body));
    }
}

void Collector::add(const TagLib::RIFF::Info::Tag &tag)
{
    for (const TextField &field : textFields()) {
        const TagLib::String text = field.info != nullptr ? tag.fieldText(field.info) : TagLib::String();
        if (!text.isEmpty()) {
            m_items.push_back(textItem(field, {toText(text)}));
        }
    }
}

/// Calls `add` with `file` if it is a `File`.
template <typename File, typename Add> bool addTags(TagLib::File &file, Add add)
{
    auto *const known = dynamic_cast<File *>(&file);
    if (known != nullptr) {
        add(*known);
    }
    return known != nullptr;
}

} // namespace

std::vector<MetadataItem> tagItems(TagLib::File &file, BoundedStream &stream)
{
    Collector collector(stream);
    const auto addId3v1 = [&](auto &tagged) {
        if (tagged.hasID3v1Tag()) {
            collector.add(*tagged.ID3v1Tag());
        }
    };
    const auto addApe = [&](auto &tagged) {
        addId3v1(tagged);
        if (tagged.hasAPETag()) {
            collector.add(*tagged.APETag());
        }
    };
    const auto addComment = [&](auto &ogg) {
        if (TagLib::Ogg::XiphComment *const comment = ogg.tag()) {
            collector.add(*comment, comment->pictureList());
        }
    };
    const auto addMpeg = [&](TagLib::MPEG::File &mpeg) {
        addApe(mpeg);
        collector.addId3v2();
    };
    const auto addFlac = [&](TagLib::FLAC::File &flac) {
        addId3v1(flac);
        collector.addId3v2();
        if (flac.hasXiphComment()) {
            collector.add(*flac.xiphComment(), flac.pictureList());
        }
    };
    const auto addWave = [&](TagLib::RIFF::WAV::File &wave) {
        if (wave.hasInfoTag()) {
            collector.add(*wave.InfoTag());
        }
        collector.addId3v2();
    };
    const auto addMp4 = [&](TagLib::MP4::File &mp4) {
        if (mp4.tag() != nullptr) {
            collector.add(*mp4.tag());
        }
    };
    const auto addAiff = [&](TagLib::RIFF::AIFF::File &) { collector.addId3v2(); };

    using namespace TagLib;
    addTags<MPEG::File>(file, addMpeg) || addTags<MP4::File>(file, addMp4) || addTags<Ogg::FLAC::File>(file, addComment)
        || addTags<Ogg::Speex::File>(file, addComment) || addTags<FLAC::File>(file, addFlac)
        || addTags<RIFF::WAV::File>(file, addWave) || addTags<RIFF::AIFF::File>(file, addAiff)
        || addTags<APE::File>(file, addApe) || addTags<WavPack::File>(file, addApe) || addTags<MPC::File>(file, addApe);
    return collector.take();
}
