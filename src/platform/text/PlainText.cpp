#include "platform/text/PlainText.h"

#include <QStringDecoder>

#include <algorithm>

namespace {

bool isNewline(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

} // namespace

QString decodeText(const QByteArray &bytes)
{
    if (const std::optional<QStringConverter::Encoding> marked = QStringConverter::encodingForData(bytes)) {
        return QStringDecoder(*marked).decode(bytes);
    }
    const QUtf8StringView utf8(bytes);
    return utf8.isValidUtf8() ? utf8.toString() : QString::fromLatin1(bytes);
}

QStringView takeLine(QStringView &rest)
{
    const auto *const end = std::find_if(rest.begin(), rest.end(), isNewline);
    const QStringView line(rest.begin(), end);
    rest = rest.sliced(std::min(line.size() + 1, rest.size()));
    return line;
}
