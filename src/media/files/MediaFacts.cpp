#include "media/files/MediaFacts.h"

#include <algorithm>
#include <iterator>

namespace {

std::int64_t sizeOf(const Picture &picture)
{
    return std::max({picture.inFile.length, std::int64_t(picture.inReader.size()), std::int64_t(picture.own.size())});
}

QByteArray bytesOf(const Picture &picture, const RegularFile &file)
{
    if (!picture.own.isEmpty()) {
        return picture.own;
    }
    if (!picture.inReader.empty()) {
        return {picture.inReader.data(), qsizetype(picture.inReader.size())};
    }
    QByteArray bytes(picture.inFile.length, Qt::Uninitialized);
    bytes.truncate(qsizetype(file.readAt(picture.inFile.position, {bytes.data(), std::size_t(bytes.size())})));
    return bytes;
}

} // namespace

std::span<const TextField, textFieldCount> textFields()
{
    static constexpr TextField fields[textFieldCount] = {
        {TagId::title, "TT2", CommonKey::Title, false, {"TITLE", nullptr}, {"TITLE", nullptr}, "\251nam", "INAM",
            "title"},
        {TagId::artist, "TP1", CommonKey::Artist, true, {"ARTIST", nullptr}, {"ARTIST", nullptr}, "\251ART", "IART",
            "artist"},
        {TagId::album, "TAL", CommonKey::AlbumName, false, {"ALBUM", nullptr}, {"ALBUM", nullptr}, "\251alb", "IPRD",
            "album"},
        {TagId::albumArtist, "TP2", CommonKey::None, true, {"ALBUMARTIST", "ALBUM ARTIST"},
            {"ALBUM ARTIST", "ALBUMARTIST"}, "aART", nullptr, "album_artist"},
        {TagId::trackNumber, "TRK", CommonKey::None, false, {"TRACKNUMBER", nullptr}, {"TRACK", nullptr}, "trkn",
            "IPRT", "track"},
        {TagId::discNumber, "TPA", CommonKey::None, false, {"DISCNUMBER", nullptr}, {"DISC", "DISCNUMBER"}, "disk",
            nullptr, "disc"},
        {TagId::date, "TYE", CommonKey::None, false, {"DATE", "YEAR"}, {"YEAR", "DATE"}, "\251day", "ICRD", "date"},
    };
    return fields;
}

AudioStream appleLosslessStream(int sampleRate, std::uint32_t sourceDepth)
{
    const std::uint32_t flags = sourceDepth == 16 ? 1
        : sourceDepth == 20                       ? 2
        : sourceDepth == 24                       ? 3
        : sourceDepth == 32                       ? 4
                                                  : 0;
    return {double(sampleRate), AudioFormat::appleLossless, flags, sourceDepth};
}

MetadataItem textItem(const TextField &field, const QStringList &values)
{
    QStringList filled;
    std::copy_if(values.begin(), values.end(), std::back_inserter(filled),
        [](const QString &value) { return !value.isEmpty(); });
    const QString text = filled.isEmpty() ? QLatin1String("")
        : field.isJoined                  ? filled.join(QStringLiteral(", "))
                                          : filled.first();
    return {field.commonKey, QString::fromLatin1(field.identifier.data(), qsizetype(field.identifier.size())), text,
        std::nullopt};
}

void appendPictures(std::vector<MetadataItem> &items, std::span<const Picture> pictures, const RegularFile &file)
{
    const auto isTaken = [](const Picture &picture) { return sizeOf(picture) > 0 && sizeOf(picture) <= maxPicture; };
    auto shown = std::find_if(pictures.begin(), pictures.end(),
        [&](const Picture &picture) { return picture.isFrontCover && isTaken(picture); });
    if (shown == pictures.end()) {
        shown = std::find_if(pictures.begin(), pictures.end(), isTaken);
    }
    if (shown == pictures.end()) {
        return;
    }
    const QString identifier = QString::fromLatin1(TagId::picture.data(), qsizetype(TagId::picture.size()));
    std::int64_t left = maxPictures - sizeOf(*shown);
    for (const Picture &picture : pictures) {
        if (&picture != &*shown && isTaken(picture) && sizeOf(picture) <= left) {
            left -= sizeOf(picture);
            items.push_back({CommonKey::Artwork, identifier, std::nullopt, bytesOf(picture, file)});
        }
    }
    items.push_back({CommonKey::Artwork, identifier, std::nullopt, bytesOf(*shown, file)});
}
