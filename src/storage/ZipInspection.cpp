#include "storage/ZipInspection.h"

#include "platform/MarluneError.h"
#include "platform/files/ByteCursor.h"
#include "platform/files/RegularFile.h"

#include <QSet>
#include <QStringTokenizer>

#include <sys/stat.h>

#include <algorithm>

namespace {

/// A record of the archive: its signature, and its length without the texts behind it.
struct RecordKind {
    std::uint32_t signature;
    std::int64_t bytes;
};
constexpr RecordKind localHeader {0x04034B50, 30}; // APPNOTE.TXT, section 4.3.7
constexpr RecordKind centralHeader {0x02014B50, 46}; // section 4.3.12
constexpr RecordKind endRecord {0x06054B50, 22}; // section 4.3.16
constexpr std::int64_t maxComment = 0xFFFF;
constexpr qsizetype deepestName = 64; // no theme has so many folders in one another

constexpr std::uint32_t encrypted = 1; // section 4.4.4
constexpr std::uint32_t firstTypedMode = 010000; // below it a mode names no type of file: archives of DOS and Windows

/// Bytes of the archive; whoever asks for what lies outside ends the inspection.
class Bytes {
public:
    Bytes(const RegularFile &file, std::int64_t position, std::int64_t length)
    {
        if (position < 0 || length < 0 || position > file.size() || length > file.size() - position) {
            Storage::refusePackage();
        }
        m_bytes.resize(length);
        if (file.readAt(position, {m_bytes.data(), std::size_t(length)}) < std::size_t(length)) {
            if (file.failure()) {
                throw std::system_error(file.failure());
            }
            Storage::refusePackage(); // it has become shorter
        }
    }

    [[nodiscard]] std::int64_t size() const { return m_bytes.size(); }
    [[nodiscard]] QByteArrayView slice(std::int64_t offset, std::int64_t length) const
    {
        return given(at(offset).take(std::uint64_t(length)));
    }
    [[nodiscard]] std::uint32_t number16(std::int64_t offset) const
    {
        return std::uint32_t(given(at(offset).number(2)));
    }
    [[nodiscard]] std::uint32_t number32(std::int64_t offset) const
    {
        return std::uint32_t(given(at(offset).number(4)));
    }

private:
    [[nodiscard]] ByteCursor at(std::int64_t offset) const
    {
        return ByteCursor(m_bytes, ByteOrder::Little).at(std::uint64_t(offset));
    }
    template <typename Value> [[nodiscard]] static Value given(const std::optional<Value> &value)
    {
        if (!value) {
            Storage::refusePackage();
        }
        return *value;
    }

    QByteArray m_bytes;
};

/// Where the central directory lies in the file.
struct Directory {
    std::int64_t begin = 0;
    std::int64_t end = 0; ///< the end record's place
    int entries = 0;
};

/// The end record comes behind all else, and only its comment behind it. A comment can hold the record's signature,
/// so the one that counts is the last whose comment ends where the file does.
Directory findDirectory(const RegularFile &file)
{
    const std::int64_t start = std::max<std::int64_t>(0, file.size() - endRecord.bytes - maxComment);
    const Bytes tail(file, start, file.size() - start);
    std::int64_t at = tail.size() - endRecord.bytes;
    const auto isEndRecord = [&] {
        return tail.number32(at) == endRecord.signature && at + endRecord.bytes + tail.number16(at + 20) == tail.size();
    };
    while (at >= 0 && !isEndRecord()) {
        --at;
    }
    if (at < 0) {
        Storage::refusePackage();
    }
    const std::uint32_t entries = tail.number16(at + 10);
    const bool inOnePart = tail.number16(at + 4) == 0 && tail.number16(at + 6) == 0 && tail.number16(at + 8) == entries;
    const Directory directory {.begin = tail.number32(at + 16), .end = start + at, .entries = int(entries)};
    if (entries < 1 || entries > Storage::maxPackageEntries || !inOnePart
        || directory.begin + std::int64_t(tail.number32(at + 12)) != directory.end) {
        Storage::refusePackage();
    }
    return directory;
}

/// Equal for names that some disk takes for one: FAT compares capital letters, others small ones, and some take
/// a letter with its accent for the two written one after the other.
QByteArray caseless(QByteArrayView name)
{
    if (std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; })) {
        return name.toByteArray().toLower();
    }
    QString text = QString::fromUtf8(name).normalized(QString::NormalizationForm_C);
    std::transform(text.begin(), text.end(), text.begin(), [](QChar c) { return c.toUpper(); });
    return text.toLower().toUtf8();
}

/// Whether ".." is one of the parts between separators.
bool hasParentPart(QByteArrayView name)
{
    constexpr char parent[] = "..";
    for (qsizetype at = name.indexOf(parent); at >= 0; at = name.indexOf(parent, at + 1)) {
        const bool begins = at == 0 || name[at - 1] == '/';
        const bool ends = at + 2 == name.size() || name[at + 2] == '/';
        if (begins && ends) {
            return true;
        }
    }
    return false;
}

void requireSafe(QByteArrayView name)
{
    if (std::count(name.begin(), name.end(), '/') > deepestName || name.startsWith('/') || name.contains('\\')
        || hasParentPart(name) || name.contains('\r') || name.contains('\0')) {
        throw MarluneError(QStringLiteral("Paczka ZIP zawiera niebezpieczną ścieżkę."));
    }
}

/// Walks through the central directory, entry by entry.
class Inspection {
public:
    Inspection(const RegularFile &file, const Directory &directory)
        : m_file(file)
        , m_records(file, directory.begin, file.size() - directory.begin)
        , m_begin(directory.begin)
        , m_end(directory.end - directory.begin)
    {
    }

    [[nodiscard]] Storage::ZipContents run(int entries)
    {
        m_contents.directoryEnd = m_begin + m_end;
        for (int entry = 0; entry < entries; ++entry) {
            inspectEntry();
        }
        if (m_at != m_end) {
            Storage::refusePackage();
        }
        return std::move(m_contents);
    }

private:
    void inspectEntry()
    {
        if (m_records.number32(m_at) != centralHeader.signature || (m_records.number16(m_at + 8) & encrypted) != 0) {
            Storage::refusePackage();
        }
        m_unpacked += m_records.number32(m_at + 24);
        if (m_unpacked > Storage::maxPackage) {
            throw MarluneError(QStringLiteral("Rozpakowany motyw przekracza 100 MB."));
        }
        const std::int64_t nameLength = m_records.number16(m_at + 28);
        const std::int64_t next
            = m_at + centralHeader.bytes + nameLength + m_records.number16(m_at + 30) + m_records.number16(m_at + 32);
        const QByteArrayView name = m_records.slice(m_at + centralHeader.bytes, nameLength);
        if (next > m_end) {
            Storage::refusePackage();
        }
        inspectName(name);
        inspectLocalHeader(m_records.number32(m_at + 42), name);
        const std::uint32_t mode = m_records.number32(m_at + 38) >> 16;
        if (mode >= firstTypedMode && !S_ISREG(mode) && !S_ISDIR(mode)) {
            throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie lub plik specjalny."));
        }
        m_contents.entries.push_back({name.toByteArray(), m_begin + m_at, m_records.number16(m_at + 10)});
        m_at = next;
    }

    void inspectName(QByteArrayView name)
    {
        if (name.isEmpty() || !QUtf8StringView(name).isValidUtf8()) {
            Storage::refusePackage();
        }
        const qsizetype known = m_names.size();
        m_names.insert(caseless(name));
        if (m_names.size() == known || name.contains('\n')) {
            Storage::refusePackage();
        }
        requireSafe(name);
    }

    /// The name is there once more in front of the content; what reads the archive from its start sees that one.
    void inspectLocalHeader(std::int64_t position, QByteArrayView name) const
    {
        const Bytes header(m_file, position, localHeader.bytes + name.size());
        if (header.number32(0) != localHeader.signature || header.number16(26) != name.size()
            || header.slice(localHeader.bytes, name.size()) != name) {
            Storage::refusePackage();
        }
    }

    const RegularFile &m_file;
    Bytes m_records; ///< from the directory's begin to the file's end
    std::int64_t m_begin; ///< of the directory, in the file
    std::int64_t m_end; ///< of the directory, in m_records
    std::int64_t m_at = 0;
    std::int64_t m_unpacked = 0; ///< bytes, by what the entries say
    QSet<QByteArray> m_names; ///< caseless
    Storage::ZipContents m_contents;
};

} // namespace

namespace Storage {

void refusePackage()
{
    throw MarluneError(QStringLiteral("Nieprawidłowa lub niebezpieczna paczka ZIP."));
}

ZipContents inspectZip(const std::filesystem::path &url)
{
    const RegularFile file = RegularFile::openOrThrow(url);
    if (file.size() < endRecord.bytes || file.size() >= maxPackage) {
        refusePackage();
    }
    const Directory directory = findDirectory(file);
    return Inspection(file, directory).run(directory.entries);
}

void validateZipListing(const QString &listing)
{
    const auto names = QStringView(listing).tokenize(u'\n', Qt::SkipEmptyParts);
    int count = 0;
    for (auto name = names.begin(); name != names.end() && count <= maxPackageEntries; ++name) {
        ++count;
    }
    if (count < 1 || count > maxPackageEntries) {
        throw MarluneError(QStringLiteral("Paczka jest pusta lub zawiera zbyt wiele plików."));
    }
    for (const QStringView name : names) {
        requireSafe(name.toUtf8());
    }
}

} // namespace Storage
