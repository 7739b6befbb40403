// Previews from arbitrary pages: whatever a page says, what is fetched for it lies on the site.
#include "FuzzFile.h"

#include "themes/Catalogue.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QUrl root(QStringLiteral("https://example.test"));
    const std::vector<Theme> themes {{"/a/Retro Blue.cfg"}, {"/b/retroblue.cfg"}, {"/ż1.cfg"}, {"/!.cfg"}};
    std::u16string units(size / 2, u'\0'); // any, paired or not
    std::copy_n(data, units.size() * 2, reinterpret_cast<std::uint8_t *>(units.data()));
    const QString page = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const QString &text : {page, QString::fromStdU16String(units)}) {
        require(Catalogue::decoded(text).size() <= text.size());
        const QString name = Catalogue::normalize(text);
        require(!name.contains(u' ') && !name.contains(u'\n'));
        for (const ThemePreview &preview : Catalogue::parseCatalog(text, themes, root)) {
            for (const auto &place : {preview.playing, preview.menu}) {
                require(!place || std::get<QUrl>(*place).toEncoded().startsWith("https://example.test/themes/"));
            }
            require(
                preview.detail && preview.detail->toEncoded().startsWith("https://example.test/index.php?themeid="));
        }
    }
    return 0;
}
