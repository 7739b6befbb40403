#include "storage/Device.h"

#include "storage/PathSafety.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/text/PlainText.h"
#include "platform/volumes/Volumes.h"

namespace {

/// The firmware writes a few hundred bytes; a larger file is not its own.
constexpr std::int64_t maxInfoFile = 1'000'000;

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
    const QByteArray info = Files::readBelow(candidate / "rockbox-info.txt", maxInfoFile).value_or(QByteArray());
    return {.root = folder,
        .name = Files::name(folder),
        .version = versionFrom(info),
        .available = capacity.available,
        .total = capacity.total,
        .isVolume = Volumes::isMountedDisk(folder)};
}

QString Device::versionFrom(const QByteArray &info)
{
    static const QString prefix = QStringLiteral("Version:");
    const QUtf8StringView utf8(info);
    const QString text = utf8.isValidUtf8() ? utf8.toString() : QString();
    for (QStringView rest(text); !rest.isEmpty();) {
        const QStringView line = takeLine(rest);
        if (line.startsWith(prefix)) {
            return line.toString().remove(prefix).trimmed();
        }
    }
    return QStringLiteral("wersja nieznana");
}
