#include "platform/files/PathText.h"

#include <string>
#include <string_view>

namespace {

constexpr char16_t escapedByteBase = 0xDC00;

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
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

QString text(const std::filesystem::path &path)
{
    return textOfBytes(path.native());
}

QString textOfBytes(std::string_view bytes)
{
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
    const std::filesystem::path item = withoutSeparator(path);
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

std::filesystem::path withoutSeparator(const std::filesystem::path &path)
{
    return path.has_filename() ? path : path.parent_path();
}

std::filesystem::path standardized(const std::filesystem::path &path)
{
    std::filesystem::path result = std::filesystem::absolute(path).lexically_normal();
    return result.has_filename() || result == result.root_path() ? result : result.parent_path();
}

} // namespace Files
