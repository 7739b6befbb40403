#include "storage/Device.h"

#include "storage/PathSafety.h"

#include "platform/Files.h"
#include "platform/MarluneError.h"
#include "platform/Volumes.h"

#include <algorithm>

namespace {

/// The firmware writes a few hundred bytes; a larger file is not its own.
constexpr std::int64_t largestInfoFile = 1'000'000;

bool isNewline(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

} // namespace

Device Device::inspect(const std::filesystem::path &folder)
{
    const std::filesystem::path candidate = folder / ".rockbox";
    if (!Files::isDirectory(candidate)) {
        throw MarluneError(QStringLiteral("Ten folder nie zawiera katalogu .rockbox."));
    }
    if (isSymbolicLink(candidate) || isSymbolicLink(folder)) {
        throw MarluneError(QStringLiteral("Folder urządzenia nie może być dowiązaniem symbolicznym."));
    }
    const Volumes::Capacity capacity = Volumes::capacity(folder);
    const QByteArray info = Files::readBelow(candidate / "rockbox-info.txt", largestInfoFile).value_or(QByteArray());
    const bool slashAtEnd = !folder.has_filename();
    const std::filesystem::path parent = slashAtEnd ? folder.parent_path().parent_path() : folder.parent_path();
    return {.root = folder,
        .name = Files::name(folder),
        .version = versionFrom(info),
        .available = capacity.available,
        .total = capacity.total,
        .isVolume = Volumes::isMountFolder(parent)};
}

QString Device::versionFrom(const QByteArray &info)
{
    static const QString prefix = QStringLiteral("Version:");
    const QUtf8StringView utf8(info);
    const QString text = utf8.isValidUtf8() ? utf8.toString() : QString();
    for (auto begin = text.begin(); begin != text.end();) {
        const auto end = std::find_if(begin, text.end(), isNewline);
        const QStringView line(begin, end);
        if (line.startsWith(prefix)) {
            return line.toString().remove(prefix).trimmed();
        }
        begin = end == text.end() ? end : end + 1;
    }
    return QStringLiteral("wersja nieznana");
}
