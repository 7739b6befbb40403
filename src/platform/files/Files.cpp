#include "platform/files/Files.h"

#include "platform/files/DiskCalls.h"

#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace {

constexpr char16_t escapedByteBase = 0xDC00;

[[noreturn]] void throwNumber(int error)
{
    throw std::system_error(error, std::generic_category());
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// EINVAL: some network and FUSE file systems cannot do this to a folder.
bool folderReachesMedium(int folder)
{
    return diskCalls().fsync(folder) == 0 || errno == EINVAL;
}

/// A failure that concerns no file, or one by its hidden name, is told with the final name.
[[noreturn]] void rethrowFor(
    const std::filesystem::path &path, const std::filesystem::path &temporary, const std::system_error &failure)
{
    const auto *named = dynamic_cast<const std::filesystem::filesystem_error *>(&failure);
    if (named != nullptr && !named->path1().empty() && named->path1() != temporary) {
        throw; // of the file that was read
    }
    throw std::filesystem::filesystem_error("write", path, failure.code());
}

/// Length of the well-formed UTF-8 sequence at the start of `bytes`, 0 if there is none (RFC 3629, section 4).
std::size_t sequenceLength(std::string_view bytes)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char first = at(0);
    const std::size_t length = first < 0x80 ? 1
        : first >= 0xC2 && first < 0xE0     ? 2
        : (first & 0xF0) == 0xE0            ? 3
        : first >= 0xF0 && first < 0xF5     ? 4
                                            : 0;
    if (length == 0 || length > bytes.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(at(i))) {
            return 0;
        }
    }
    const bool overlong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xF0 && at(1) < 0x90);
    const bool surrogate = first == 0xED && at(1) >= 0xA0;
    const bool beyond = first == 0xF4 && at(1) >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

/// Qt takes a U+FEFF at the start for a mark of the encoding and drops it; in a name it is a character.
QString decoded(QUtf8StringView utf8)
{
    const QString text = utf8.toString();
    const std::string_view bytes(utf8.data(), std::size_t(utf8.size()));
    return bytes.starts_with("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

} // namespace

namespace Files {

void throwFailure(int error, const std::filesystem::path &path)
{
    throw std::filesystem::filesystem_error("disk", path, std::error_code(error, std::generic_category()));
}

QString text(const std::filesystem::path &path)
{
    const std::string_view bytes = path.native();
    const auto whole = QUtf8StringView(bytes.data(), qsizetype(bytes.size()));
    if (whole.isValidUtf8()) {
        return decoded(whole);
    }
    QString result;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = sequenceLength(bytes.substr(i));
        if (length == 0) {
            result += QChar(char16_t(escapedByteBase + static_cast<unsigned char>(bytes[i])));
            ++i;
        } else {
            result += decoded(QUtf8StringView(bytes.data() + i, qsizetype(length)));
            i += length;
        }
    }
    return result;
}

std::filesystem::path fromText(const QString &text)
{
    std::string bytes;
    bytes.reserve(std::size_t(text.size()));
    qsizetype run = 0; // start of the text not yet taken over
    const auto take = [&](qsizetype end) {
        const QByteArray piece = QStringView(text).sliced(run, end - run).toUtf8();
        bytes.append(piece.constData(), std::size_t(piece.size()));
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (const char16_t unit = text[i].unicode();
            unit >= escapedByteBase + 0x80 && unit <= escapedByteBase + 0xFF) {
            take(i);
            bytes.push_back(static_cast<char>(unit - escapedByteBase));
            run = i + 1;
        }
    }
    take(text.size());
    return bytes;
}

QString name(const std::filesystem::path &path)
{
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    return item.has_filename() ? text(item.filename()) : text(item);
}

QString baseName(const std::filesystem::path &path)
{
    return text(path.stem());
}

QString extension(const std::filesystem::path &path)
{
    return text(path.extension()).mid(1);
}

std::filesystem::path standardised(const std::filesystem::path &path)
{
    std::filesystem::path result = std::filesystem::absolute(path).lexically_normal();
    return result.has_filename() || result == result.root_path() ? result : result.parent_path();
}

bool exists(const std::filesystem::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

bool isDirectory(const std::filesystem::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

Kind kindOf(const std::filesystem::path &path, int from)
{
    // The name of a link that ends in a separator would mean the link's target.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    struct stat status {};
    if (::fstatat(from, item.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) {
            throwFailure(errno, path);
        }
        return Kind::None;
    }
    switch (status.st_mode & S_IFMT) {
    case S_IFREG:
        return Kind::File;
    case S_IFDIR:
        return Kind::Folder;
    case S_IFLNK:
        return Kind::Link;
    default:
        return Kind::Other;
    }
}

Kind kindOrNone(const std::filesystem::path &path, int from)
{
    try {
        return kindOf(path, from);
    } catch (const std::system_error &) {
        return Kind::None;
    }
}

std::optional<std::int64_t> size(const std::filesystem::path &path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status.st_size;
}

Descriptor::Descriptor(Descriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

int Descriptor::release()
{
    return std::exchange(m_descriptor, -1);
}

Descriptor openForReading(const std::filesystem::path &path, Links links, int from)
{
    struct stat status {};
    const auto requireRegular = [&] {
        if (!S_ISREG(status.st_mode)) {
            throwFailure(S_ISDIR(status.st_mode) ? EISDIR : S_ISLNK(status.st_mode) ? ELOOP : EINVAL, path);
        }
    };
    const bool follows = links == Links::Follow;
    // Asked before the opening, because to open a device can already do something to it, and once more after it,
    // because the name may mean another file by then: a pipe must not be waited for.
    if (::fstatat(from, path.c_str(), &status, follows ? 0 : AT_SYMLINK_NOFOLLOW) != 0) {
        throwFailure(errno, path);
    }
    requireRegular();
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (follows ? 0 : O_NOFOLLOW);
    Descriptor descriptor(::openat(from, path.c_str(), flags));
    if (descriptor.get() < 0 || ::fstat(descriptor.get(), &status) != 0) {
        throwFailure(errno, path);
    }
    requireRegular();
    return descriptor;
}

std::size_t readFully(int descriptor, std::span<char> buffer)
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::read(descriptor, buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throwNumber(errno);
        }
        if (count == 0) {
            break;
        }
        filled += std::size_t(count);
    }
    return filled;
}

std::optional<QByteArray> readBelow(const std::filesystem::path &path, std::int64_t limit)
{
    try {
        const Descriptor file = openForReading(path);
        struct stat status {};
        if (::fstat(file.get(), &status) != 0 || status.st_size >= limit) {
            return std::nullopt;
        }
        QByteArray bytes(status.st_size, Qt::Uninitialized);
        const std::size_t count = readFully(file.get(), {bytes.data(), std::size_t(bytes.size())});
        bytes.truncate(qsizetype(count));
        return bytes;
    } catch (const std::system_error &) {
        return std::nullopt;
    }
}

Descriptor createExclusively(const std::filesystem::path &path, int from)
{
    const int descriptor
        = diskCalls().openat(from, path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (descriptor < 0) {
        throwFailure(errno, path);
    }
    return Descriptor(descriptor);
}

void writeFully(int descriptor, std::span<const char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = diskCalls().write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throwNumber(count == 0 ? EIO : errno);
        }
        bytes = bytes.subspan(std::size_t(count));
    }
}

void synchronise(int descriptor)
{
    if (diskCalls().fsync(descriptor) != 0) {
        throwNumber(errno);
    }
}

void makeFolders(const std::filesystem::path &folder)
{
    if (folder.empty() || isDirectory(folder)) {
        return;
    }
    makeFolders(folder.parent_path());
    if (diskCalls().mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) { // another job may have made it meanwhile
        throwFailure(errno, folder);
    }
    synchroniseFolder(folder.parent_path());
}

void synchroniseFolder(const std::filesystem::path &folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.get() < 0 || !folderReachesMedium(descriptor.get())) {
        throwFailure(errno, folder);
    }
}

void synchroniseName(const Folder &folder)
{
    (void)folderReachesMedium(folder.descriptor.get());
}

void synchroniseName(const std::filesystem::path &file)
{
    try {
        synchroniseFolder(file.parent_path());
    } catch (const std::system_error &) { // NOLINT(bugprone-empty-catch): as promised
    }
}

std::string newIdentifier()
{
    return QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper().toStdString();
}

std::filesystem::path temporaryName(const QByteArray &purpose)
{
    return ".marlune-" + purpose.toStdString() + newIdentifier() + ".partial";
}

void writeNew(const std::filesystem::path &file, std::span<const char> bytes, Durability durability, int from)
{
    Descriptor descriptor = createExclusively(file, from);
    writeFully(descriptor.get(), bytes);
    if (durability == Durability::Now) {
        synchronise(descriptor.get());
    }
    if (diskCalls().close(descriptor.release()) != 0) {
        throwFailure(errno, file);
    }
}

void place(const Folder &folder, const std::filesystem::path &name, Placing placing, const FileMaker &make)
{
    const std::filesystem::path temporary = temporaryName();
    const int place = folder.descriptor.get();
    const auto rename = placing == Placing::Create ? diskCalls().renameExclusive : diskCalls().renameat;
    try {
        make(temporary, place);
        if (rename(place, temporary.c_str(), place, name.c_str()) != 0) {
            throwFailure(errno, folder.path / name);
        }
    } catch (const std::system_error &failure) {
        diskCalls().unlinkat(place, temporary.c_str(), 0);
        rethrowFor(folder.path / name, temporary, failure);
    } catch (...) {
        diskCalls().unlinkat(place, temporary.c_str(), 0);
        throw;
    }
}

void writeAtomically(const std::filesystem::path &path, std::span<const char> bytes)
{
    const std::filesystem::path parent = path.has_parent_path() ? path.parent_path() : ".";
    const Folder folder {Descriptor(::open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), path.parent_path()};
    if (folder.descriptor.get() < 0) {
        throwFailure(errno, path);
    }
    place(folder, path.filename(), Placing::Replace,
        [&](const std::filesystem::path &file, int from) { writeNew(file, bytes, Durability::Now, from); });
}

void synchroniseVolume(const Folder &folder, const std::filesystem::path &name)
{
    Descriptor file;
    if (kindOf(name, folder.descriptor.get()) == Kind::File) {
        file = openForReading(name, Links::Refuse, folder.descriptor.get());
    }
    const int asked = file.get() < 0 ? folder.descriptor.get() : file.get();
    if (diskCalls().syncfs(asked) != 0 || !folderReachesMedium(asked)) {
        throwFailure(errno, folder.path / name);
    }
}

} // namespace Files
