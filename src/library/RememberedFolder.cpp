#include "library/RememberedFolder.h"

#include "platform/files/ByteCursor.h"

#include <QHash>
#include <QtEndian>

#include <cstring>
#include <map>

namespace {

constexpr std::uint32_t maxDecoded = 64'000'000; // bytes

/// What encoded() puts one behind the other: numbers with their high bytes first, bytes behind their length.
class Writer {
public:
    template <typename Number> void add(Number number)
    {
        const Number ordered = qToBigEndian(number);
        m_bytes.append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
    }
    void add(QByteArrayView bytes)
    {
        add(quint32(bytes.size()));
        m_bytes.append(bytes);
    }
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// Gives it back. Once the bytes do not suffice it gives nothing any more.
class Reader {
public:
    explicit Reader(QByteArrayView bytes)
        : m_cursor(bytes, ByteOrder::Big)
    {
    }
    template <typename Number> [[nodiscard]] Number number()
    {
        const std::optional<QByteArrayView> found = m_cursor.take(sizeof(Number));
        if (!found) {
            fail();
            return {};
        }
        return qFromBigEndian<Number>(found->data());
    }
    [[nodiscard]] QByteArrayView bytes()
    {
        const std::optional<QByteArrayView> found = m_cursor.take(number<quint32>());
        if (!found) {
            fail();
        }
        return found.value_or(QByteArrayView());
    }
    void fail() { m_hasFailed = true; }
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
    [[nodiscard]] bool isAtEnd() const { return !m_hasFailed && m_cursor.remaining() == 0; }

private:
    ByteCursor m_cursor;
    bool m_hasFailed = false;
};

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
    void write(Writer &writer) const
    {
        writer.add(quint32(m_texts.size()));
        for (const QString &text : m_texts) {
            const QByteArray bytes = text.toUtf8();
            const bool isExact = QString::fromUtf8(bytes) == text;
            writer.add(quint8(isExact));
            writer.add(isExact ? QByteArrayView(bytes)
                               : QByteArrayView(reinterpret_cast<const char *>(text.utf16()), text.size() * 2));
        }
    }

private:
    QHash<QString, quint32> m_numbers;
    std::vector<QString> m_texts;
};

class TextReader {
public:
    explicit TextReader(Reader &reader)
    {
        const auto count = reader.number<quint32>();
        for (quint32 i = 0; i < count && !reader.hasFailed(); ++i) {
            const bool isUtf8 = reader.number<quint8>() != 0;
            const QByteArrayView bytes = reader.bytes();
            QString text = isUtf8 ? QString::fromUtf8(bytes) : QString(bytes.size() / 2, Qt::Uninitialized);
            if (!isUtf8) {
                std::memcpy(text.data(), bytes.data(), std::size_t(text.size()) * 2);
            }
            m_texts.push_back(std::move(text));
        }
    }
    [[nodiscard]] QString next(Reader &reader) const
    {
        const auto number = reader.number<quint32>();
        if (number < m_texts.size()) {
            return m_texts[number];
        }
        reader.fail();
        return {};
    }

private:
    std::vector<QString> m_texts;
};

void write(Writer &writer, const FileStamp &stamp)
{
    writer.add(quint64(stamp.inode));
    for (const std::int64_t value : {stamp.size, stamp.modified, stamp.changed}) {
        writer.add(qint64(value));
    }
}

void write(Writer &writer, const AudioInfo &info, TextWriter &texts)
{
    writer.add(texts.number(info.codec));
    writer.add(texts.number(info.year));
    writer.add(info.duration);
    for (const std::int64_t value : {info.sampleRate, info.bitDepth, info.bitrate, info.trackNumber, info.discNumber}) {
        writer.add(qint64(value));
    }
    writer.add(quint32(info.tags.size()));
    for (auto tag = info.tags.begin(); tag != info.tags.end(); ++tag) {
        writer.add(texts.number(tag.key()));
        writer.add(texts.number(tag.value()));
    }
}

FileStamp readStamp(Reader &reader)
{
    FileStamp stamp;
    stamp.inode = reader.number<quint64>();
    for (std::int64_t *value : {&stamp.size, &stamp.modified, &stamp.changed}) {
        *value = reader.number<qint64>();
    }
    return stamp;
}

AudioInfo readInfo(Reader &reader, const TextReader &texts)
{
    AudioInfo info;
    info.codec = texts.next(reader);
    info.year = texts.next(reader);
    info.duration = reader.number<double>();
    for (std::int64_t *value : {&info.sampleRate, &info.bitDepth, &info.bitrate, &info.trackNumber, &info.discNumber}) {
        *value = reader.number<qint64>();
    }
    const auto tags = reader.number<quint32>();
    for (quint32 tag = 0; tag < tags && !reader.hasFailed(); ++tag) {
        const QString key = texts.next(reader);
        info.tags.insert(info.tags.cend(), key, texts.next(reader)); // they come in order
    }
    return info;
}

std::string textOf(QByteArrayView bytes)
{
    return {bytes.data(), std::size_t(bytes.size())};
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
    Writer entries;
    write(entries, stamp);
    entries.add(quint32(pictures.size()));
    for (const std::string &picture : pictures) {
        entries.add(QByteArrayView(picture));
    }
    std::map<std::string, const RememberedFile *> ordered;
    for (const auto &[name, file] : files) {
        ordered.emplace(name, &file);
    }
    entries.add(quint32(files.size()));
    for (const auto &[name, file] : ordered) {
        entries.add(QByteArrayView(name));
        write(entries, file->stamp);
        write(entries, file->facts.info, texts);
        entries.add(quint8(file->facts.hasFlacPicture));
        entries.add(QByteArrayView(file->picture));
    }
    Writer whole;
    texts.write(whole);
    return qCompress(whole.bytes() + entries.bytes(), 1);
}

std::optional<RememberedFolder> RememberedFolder::decoded(QByteArrayView bytes)
{
    const QByteArray content = unpacked(bytes);
    Reader reader(content);
    const TextReader texts(reader);
    RememberedFolder folder;
    folder.stamp = readStamp(reader);
    const auto pictures = reader.number<quint32>();
    for (quint32 i = 0; i < pictures && !reader.hasFailed(); ++i) {
        folder.pictures.push_back(textOf(reader.bytes()));
    }
    const auto count = reader.number<quint32>();
    for (quint32 i = 0; i < count && !reader.hasFailed(); ++i) {
        std::string name = textOf(reader.bytes());
        RememberedFile file;
        file.stamp = readStamp(reader);
        file.facts.info = readInfo(reader, texts);
        file.facts.hasFlacPicture = reader.number<quint8>() != 0;
        file.picture = reader.bytes().toByteArray();
        folder.files.emplace(std::move(name), std::move(file));
    }
    return reader.isAtEnd() ? std::optional(std::move(folder)) : std::nullopt;
}
