#include "themes/Configuration.h"

#include "platform/files/Files.h"
#include "platform/text/PlainText.h"

namespace {

/// The firmware writes some ten thousand bytes at most. A larger file is not its own.
constexpr std::int64_t maxConfigurationBytes = 64'000;

} // namespace

Configuration configuration(const std::filesystem::path &file)
{
    return configurationFrom(Files::readBelow(file, maxConfigurationBytes).value_or(QByteArray()));
}

Configuration configurationFrom(const QByteArray &bytes)
{
    const QString text = decodeText(bytes);
    Configuration settings;
    for (QStringView rest(text); !rest.isEmpty();) {
        const QStringView line = takeLine(rest).trimmed();
        const qsizetype colon = line.indexOf(u':');
        if (colon >= 0 && !line.startsWith(u'#')) {
            settings.insert(line.first(colon).trimmed().toString(), line.sliced(colon + 1).trimmed().toString());
        }
    }
    return settings;
}
