#include "library/FileFacts.h"

#include "platform/files/Files.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr auto streamVersion = QDataStream::Qt_6_0;
constexpr qsizetype compressedFrom = 600; // bytes
constexpr char plain = 'p';
constexpr char compressed = 'c';
constexpr qsizetype maxDecoded = 1'000'000; // bytes; tags have no more

/// UTF-8 where that gives the same text again: a broken tag may hold half a character.
void write(QDataStream &stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const bool isExact = QString::fromUtf8(bytes) == text;
    stream << isExact;
    if (isExact) {
        stream << bytes;
    } else {
        stream << text;
    }
}

QString readText(QDataStream &stream)
{
    bool isUtf8 = false;
    stream >> isUtf8;
    if (isUtf8) {
        QByteArray bytes;
        stream >> bytes;
        return QString::fromUtf8(bytes);
    }
    QString text;
    stream >> text;
    return text;
}

/// The size that qCompress() states before its data; foreign bytes are not unpacked beyond a bound.
bool isOfFitSize(QByteArrayView packed)
{
    if (packed.size() < 4) {
        return false;
    }
    std::uint32_t size = 0;
    for (int i = 0; i < 4; ++i) {
        size = size << 8 | std::uint8_t(packed[i]);
    }
    return size <= maxDecoded;
}

} // namespace

FileFacts FileFacts::read(const std::filesystem::path &file)
{
    MediaAsset asset(file);
    FileFacts facts {.info = AudioInfo::read(file, asset), .picture = {}};
    const bool isFlac = Files::extension(file).compare(QLatin1String("flac"), Qt::CaseInsensitive) == 0;
    facts.picture = isFlac ? std::nullopt : applyTagItems(asset.metadata(), facts.info);
    facts.hasFlacPicture = facts.info.picture.has_value();
    if (!facts.picture) {
        facts.picture = std::exchange(facts.info.picture, std::nullopt);
    }
    return facts;
}

QByteArray FileFacts::encoded() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    write(stream, info.codec);
    stream << qint64(info.sampleRate) << qint64(info.bitDepth) << info.duration << qint64(info.bitrate)
           << qint64(info.trackNumber) << qint64(info.discNumber);
    write(stream, info.year);
    stream << quint32(info.tags.size());
    for (auto tag = info.tags.begin(); tag != info.tags.end(); ++tag) {
        write(stream, tag.key());
        write(stream, tag.value());
    }
    stream << hasFlacPicture;
    return bytes.size() < compressedFrom ? plain + bytes : compressed + qCompress(bytes);
}

std::optional<FileFacts> FileFacts::decoded(QByteArrayView bytes)
{
    if (bytes.isEmpty() || (bytes.front() == compressed && !isOfFitSize(bytes.sliced(1)))) {
        return std::nullopt;
    }
    const QByteArrayView body = bytes.sliced(1);
    const QByteArray content = bytes.front() == compressed
        ? qUncompress(reinterpret_cast<const uchar *>(body.data()), body.size())
        : QByteArray::fromRawData(body.data(), body.size());
    QDataStream stream(content);
    stream.setVersion(streamVersion);
    FileFacts facts;
    AudioInfo &info = facts.info;
    info.codec = readText(stream);
    const auto number = [&stream] {
        qint64 value = 0;
        stream >> value;
        return std::int64_t(value);
    };
    info.sampleRate = number();
    info.bitDepth = number();
    stream >> info.duration;
    info.bitrate = number();
    info.trackNumber = number();
    info.discNumber = number();
    info.year = readText(stream);
    quint32 tags = 0;
    stream >> tags;
    for (quint32 tag = 0; tag < tags && stream.status() == QDataStream::Ok; ++tag) {
        const QString key = readText(stream);
        info.tags.insert(info.tags.cend(), key, readText(stream)); // they come in order
    }
    stream >> facts.hasFlacPicture;
    return stream.status() == QDataStream::Ok && stream.atEnd() ? std::optional(std::move(facts)) : std::nullopt;
}
