// The settings in arbitrary bytes of a theme's or the firmware's file, and the picture that they may name.
#include "FuzzFile.h"

#include "themes/ThemePreview.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const Configuration settings = configurationFrom(bytes);
    require(settings.size() <= bytes.count(':'));
    for (auto setting = settings.begin(); setting != settings.end(); ++setting) {
        require(!setting.key().contains(u':') && !setting.key().startsWith(u'#'));
        require(setting.key() == setting.key().trimmed() && setting.value() == setting.value().trimmed());
        require(!setting.key().contains(u'\n') && !setting.value().contains(u'\n'));
    }
    // A root without files: whatever the settings name is not there.
    const std::filesystem::path nowhere = "/dev/null";
    require(!ThemePreview::local({nowhere / "a.cfg"}, nowhere, settings, {}));
    return 0;
}
