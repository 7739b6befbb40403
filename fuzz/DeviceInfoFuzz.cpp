// The version in arbitrary bytes of a rockbox-info.txt, and names made of the same bytes.
#include "FuzzFile.h"

#include "storage/Device.h"
#include "storage/PathSafety.h"

#include "platform/files/Files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString version = Device::versionFrom(bytes);
    require(version == version.trimmed() && !version.contains(u'\n'));

    const QString name = Files::text(bytes.toStdString());
    require(Files::fromText(name).native() == bytes.toStdString());
    for (const Volumes::NameRules rules : {Volumes::NameRules::Posix, Volumes::NameRules::Fat}) {
        const QString safe = volumeName(safeName(name), rules);
        require(!safe.isEmpty() && safe != QStringLiteral(".") && safe != QStringLiteral(".."));
        require(!safe.contains(u'/') && !safe.contains(QChar(u'\0')));
        require(volumeName(safe, rules) == safe);
    }
    return 0;
}
