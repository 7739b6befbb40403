// Reading a file of any format: FLAC through the program's own reader, all others through the media layer.
#include "audio/AudioInfo.h"
#include "audio/TagNumbers.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"

#include <cmath>
#include <system_error>

namespace {

std::optional<AudioInfo> readAsFlac(const std::filesystem::path &file)
{
    try {
        return AudioInfo::readFLAC(file);
    } catch (const MarluneError &) {
        return std::nullopt; // another format under this name: the media layer goes by content
    } catch (const std::system_error &) {
        return std::nullopt;
    }
}

std::int64_t losslessDepth(const AudioStream &stream)
{
    switch (stream.formatFlags) {
    case 1:
        return 16;
    case 2:
        return 20;
    case 3:
        return 24;
    case 4:
        return 32;
    default:
        return stream.bitsPerChannel;
    }
}

void takeStream(const AudioStream &stream, AudioInfo &info)
{
    if (std::isfinite(stream.sampleRate) && stream.sampleRate >= 0 && stream.sampleRate < 1e9) {
        info.sampleRate = std::int64_t(stream.sampleRate);
    }
    info.bitDepth = stream.bitsPerChannel;
    if (stream.formatId == AudioFormat::appleLossless) {
        info.codec = QStringLiteral("ALAC");
        info.bitDepth = losslessDepth(stream);
    } else if (stream.formatId == AudioFormat::mpeg4Aac) {
        info.codec = QStringLiteral("AAC");
    }
}

/// Mean rate over the whole file, container and pictures included.
std::int64_t meanBitrate(const std::filesystem::path &file, double duration)
{
    const std::optional<std::int64_t> size = duration > 0 ? Files::size(file) : std::nullopt;
    const double rate = size ? double(*size) * 8 / duration / 1000.0 : 0;
    return rate < 1e15 ? std::int64_t(rate) : 0; // a duration next to nothing says nothing
}

void storeIfNotEmpty(const std::optional<QString> &value, const QString &key, AudioInfo &info)
{
    if (value && !value->isEmpty()) {
        info.tags.insert(key, *value);
    }
}

/// What an item's identifier means. One item can bear several.
void applyIdentifier(const MetadataItem &item, AudioInfo &info)
{
    if (!item.text) {
        return;
    }
    const auto names = [&](const char *part) { return item.identifier.contains(QLatin1String(part)); };
    if (names("TPOS")) {
        info.discNumber = tagNumber(*item.text).value_or(0);
    }
    if (names("TRCK") || names("trackNumber")) {
        info.trackNumber = tagNumber(*item.text).value_or(info.trackNumber);
    }
    if (names("TDRC") || names("TYER") || item.commonKey == CommonKey::CreationDate) {
        info.year = tagYear(*item.text);
    }
    if (names("TPE2")) {
        info.tags.insert(QStringLiteral("ALBUMARTIST"), *item.text);
    }
}

} // namespace

AudioInfo AudioInfo::read(const std::filesystem::path &file, MediaAsset &asset)
{
    const QString extension = Files::extension(file);
    if (extension.compare(QLatin1String("flac"), Qt::CaseInsensitive) == 0) {
        if (std::optional<AudioInfo> info = readAsFlac(file)) {
            return *std::move(info);
        }
    }
    AudioInfo info;
    info.codec = extension.toUpper();
    const double duration = asset.durationSeconds().value_or(0);
    info.duration = std::isfinite(duration) ? duration : 0;
    if (const std::optional<AudioStream> stream = asset.firstAudioStream()) {
        takeStream(*stream, info);
    }
    info.bitrate = meanBitrate(file, info.duration);
    return info;
}

std::optional<QByteArray> applyTagItems(const std::vector<MetadataItem> &items, AudioInfo &info)
{
    std::optional<QString> title;
    std::optional<QString> artist;
    std::optional<QString> album;
    std::optional<QByteArray> picture;
    for (const MetadataItem &item : items) {
        std::optional<QString> *const target = item.commonKey == CommonKey::Title ? &title
            : item.commonKey == CommonKey::Artist                                 ? &artist
            : item.commonKey == CommonKey::AlbumName                              ? &album
                                                                                  : nullptr;
        if (target && item.text) {
            *target = item.text;
        }
        if (item.commonKey == CommonKey::Artwork && item.data) {
            picture = item.data;
        }
        applyIdentifier(item, info);
    }
    storeIfNotEmpty(title, QStringLiteral("TITLE"), info);
    storeIfNotEmpty(artist, QStringLiteral("ARTIST"), info);
    storeIfNotEmpty(album, QStringLiteral("ALBUM"), info);
    return picture;
}
