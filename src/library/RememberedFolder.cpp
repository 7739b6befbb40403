#include "library/RememberedFolder.h"

#include <QDataStream>
#include <QHash>
#include <QIODevice>

#include <map>

namespace {

constexpr auto streamVersion = QDataStream::Qt_6_0;
constexpr std::uint32_t maxDecoded = 64'000'000; // bytes

/// Texts by their numbers: the tracks of an album have most of theirs in common.
class TextWriter {
public:
    [[nodiscard]] quint32 number(const QString &text)
    {
        const auto known = m_numbers.constFind(text);
        if (known != m_numbers.constEnd()) {
            return *known;
        }
        m_numbers.insert(text, quint32(m_texts.size()));
        m_texts.push_back(text);
        return quint32(m_texts.size() - 1);
    }
    /// UTF-8 where that gives the same text again: a broken tag may hold half a character.
    void write(QDataStream &stream) const
    {
        stream << quint32(m_texts.size());
        for (const QString &text : m_texts) {
            const QByteArray bytes = text.toUtf8();
            const bool isExact = QString::fromUtf8(bytes) == text;
            stream << isExact;
            isExact ? stream << bytes : stream << text;
        }
    }

private:
    QHash<QString, quint32> m_numbers;
    std::vector<QString> m_texts;
};

class TextReader {
public:
    explicit TextReader(QDataStream &stream)
    {
        quint32 count = 0;
        stream >> count;
        for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
            bool isUtf8 = false;
            stream >> isUtf8;
            QByteArray bytes;
            QString text;
            if (isUtf8) {
                stream >> bytes;
                text = QString::fromUtf8(bytes);
            } else {
                stream >> text;
            }
            m_texts.push_back(text);
        }
    }
    [[nodiscard]] QString next(QDataStream &stream) const
    {
        quint32 number = 0;
        stream >> number;
        if (number < m_texts.size()) {
            return m_texts[number];
        }
        stream.setStatus(QDataStream::ReadCorruptData);
        return {};
    }

private:
    std::vector<QString> m_texts;
};

void write(QDataStream &stream, const FileStamp &stamp)
{
    stream << quint64(stamp.inode) << qint64(stamp.size) << qint64(stamp.modified) << qint64(stamp.changed);
}

void write(QDataStream &stream, const AudioInfo &info, TextWriter &texts)
{
    stream << texts.number(info.codec) << qint64(info.sampleRate) << qint64(info.bitDepth) << info.duration
           << qint64(info.bitrate) << qint64(info.trackNumber) << qint64(info.discNumber) << texts.number(info.year)
           << quint32(info.tags.size());
    for (auto tag = info.tags.begin(); tag != info.tags.end(); ++tag) {
        stream << texts.number(tag.key()) << texts.number(tag.value());
    }
}

template <typename Number> Number read(QDataStream &stream)
{
    Number value {};
    stream >> value;
    return value;
}

FileStamp readStamp(QDataStream &stream)
{
    FileStamp stamp;
    stamp.inode = read<quint64>(stream);
    stamp.size = read<qint64>(stream);
    stamp.modified = read<qint64>(stream);
    stamp.changed = read<qint64>(stream);
    return stamp;
}

AudioInfo readInfo(QDataStream &stream, const TextReader &texts)
{
    AudioInfo info;
    info.codec = texts.next(stream);
    info.sampleRate = read<qint64>(stream);
    info.bitDepth = read<qint64>(stream);
    info.duration = read<double>(stream);
    info.bitrate = read<qint64>(stream);
    info.trackNumber = read<qint64>(stream);
    info.discNumber = read<qint64>(stream);
    info.year = texts.next(stream);
    const auto tags = read<quint32>(stream);
    for (quint32 tag = 0; tag < tags && stream.status() == QDataStream::Ok; ++tag) {
        const QString key = texts.next(stream);
        info.tags.insert(info.tags.cend(), key, texts.next(stream)); // they come in order
    }
    return info;
}

std::string readName(QDataStream &stream)
{
    return read<QByteArray>(stream).toStdString();
}

/// What qCompress() has packed; empty where that states a size beyond all bounds (its first four bytes).
QByteArray unpacked(QByteArrayView bytes)
{
    std::uint32_t size = 0;
    for (qsizetype i = 0; i < 4 && i < bytes.size(); ++i) {
        size = size << 8 | std::uint8_t(bytes[i]);
    }
    const bool isFit = bytes.size() > 4 && size <= maxDecoded;
    return isFit ? qUncompress(reinterpret_cast<const uchar *>(bytes.data()), bytes.size()) : QByteArray();
}

} // namespace

QByteArray RememberedFolder::encoded() const
{
    TextWriter texts;
    QByteArray entries;
    QDataStream stream(&entries, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    write(stream, stamp);
    stream << quint32(pictures.size());
    for (const std::string &picture : pictures) {
        stream << QByteArray::fromStdString(picture);
    }
    const std::map<std::string, const RememberedFile *> ordered = [this] {
        std::map<std::string, const RememberedFile *> byName;
        for (const auto &[name, file] : files) {
            byName.emplace(name, &file);
        }
        return byName;
    }();
    stream << quint32(files.size());
    for (const auto &[name, file] : ordered) {
        stream << QByteArray::fromStdString(name);
        write(stream, file->stamp);
        write(stream, file->facts.info, texts);
        stream << file->facts.hasFlacPicture << file->picture;
    }
    QByteArray bytes;
    QDataStream whole(&bytes, QIODevice::WriteOnly);
    whole.setVersion(streamVersion);
    texts.write(whole);
    return qCompress(bytes + entries, 1);
}

std::optional<RememberedFolder> RememberedFolder::decoded(QByteArrayView bytes)
{
    const QByteArray content = unpacked(bytes);
    QDataStream stream(content);
    stream.setVersion(streamVersion);
    const TextReader texts(stream);
    RememberedFolder folder;
    folder.stamp = readStamp(stream);
    const auto pictures = read<quint32>(stream);
    for (quint32 i = 0; i < pictures && stream.status() == QDataStream::Ok; ++i) {
        folder.pictures.push_back(readName(stream));
    }
    const auto count = read<quint32>(stream);
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        const std::string name = readName(stream);
        RememberedFile file;
        file.stamp = readStamp(stream);
        file.facts.info = readInfo(stream, texts);
        stream >> file.facts.hasFlacPicture >> file.picture;
        folder.files.emplace(name, std::move(file));
    }
    const bool isWhole = !content.isEmpty() && stream.status() == QDataStream::Ok && stream.atEnd();
    return isWhole ? std::optional(std::move(folder)) : std::nullopt;
}
