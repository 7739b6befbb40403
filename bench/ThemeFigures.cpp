// Themes: the catalogue of their site, and a package of the largest size that is usual for one.
#include "Figures.h"

#include "support/CataloguePage.h"

#include "storage/ZipInspection.h"
#include "themes/Catalogue.h"
#include "themes/ThemeInstall.h"
#include "themes/ThemePreview.h"

#include <QRegularExpression>

#include <unistd.h>

namespace {

/// 4,500 files, 47 MB, which shrink to two thirds. Returns the archive; what is in it lies in "package" beside it.
std::filesystem::path makePackage(const std::filesystem::path &folder)
{
    const QString script = QStringLiteral(R"(
import os, random, sys, zipfile
folders = ['themes', 'wps', 'sbs', 'fonts', 'icons', 'backdrops']
random.seed(3)
with zipfile.ZipFile('package.zip', 'w', zipfile.ZIP_DEFLATED) as archive:
    for i in range(4500):
        ending = 'cfg' if i % 6 == 0 else 'bmp'
        part = '' if i % 6 == 0 else f'Theme {i // 90}/'
        name = f'.rockbox/{folders[i % 6]}/{part}picture {i}.{ending}'
        os.makedirs(os.path.dirname('package/' + name), exist_ok=True)
        content = bytes(random.choices(range(40), k=10444))
        open('package/' + name, 'wb').write(content)
        archive.writestr(name, content)
)");
    Bench::runTool(QStringLiteral("/usr/bin/env"),
        {QStringLiteral("-C"), Bench::text(folder), QStringLiteral("/usr/bin/python3"), QStringLiteral("-c"), script});
    return folder / "package.zip";
}

} // namespace

namespace Bench {

void catalogue(const std::filesystem::path &)
{
    constexpr int onThePage = 3000;
    constexpr int installed = 300;
    constexpr int turns = 21;
    const std::vector<CatalogueEntry> entries = catalogueEntries(onThePage);
    const QString page = cataloguePage(entries);
    std::vector<Theme> themes;
    for (int i = 0; i < installed; ++i) {
        const QString title = Catalogue::decoded(entries[std::size_t(i) * onThePage / installed].title);
        themes.push_back({"/IPOD/.rockbox/themes/" + Catalogue::normalize(title).toStdString() + ".cfg"});
    }
    const QUrl root(QStringLiteral("https://example.test"));
    const QRegularExpression patterns[] = {
        QRegularExpression(QStringLiteral("<th[^>]*>\\s*<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\">([^<]+)</a>"),
            QRegularExpression::UseUnicodePropertiesOption),
        QRegularExpression(QStringLiteral("<a href=\"index.php\\?themeid=([0-9]+)[^\"]*\"><img ([^>]+)>"),
            QRegularExpression::UseUnicodePropertiesOption),
    };
    print("catalogue",
        inTurn([&] { return seconds([&] { (void)Catalogue::parseCatalog(page, themes, root); }); },
            [&] {
                return seconds([&] {
                    for (const QRegularExpression &pattern : patterns) {
                        for (auto match = pattern.globalMatch(page); match.hasNext();) {
                            (void)match.next();
                        }
                    }
                });
            },
            turns));
}

void zip(const std::filesystem::path &)
{
    const WorkFolder folder;
    const QString archive = text(makePackage(folder.path()));
    constexpr int times = 20;
    print("zip",
        inTurn(
            [&] {
                return seconds([&] {
                    for (int i = 0; i < times; ++i) {
                        Storage::inspectZip(folder.path() / "package.zip");
                    }
                }) / times;
            },
            [&] {
                return seconds([&] {
                    for (int i = 0; i < times; ++i) {
                        runTool(QStringLiteral("unzip"), {QStringLiteral("-Z1"), archive});
                    }
                }) / times;
            }));
}

void install(const std::filesystem::path &)
{
    const WorkFolder folder;
    const QString archive = text(makePackage(folder.path()));
    const std::filesystem::path device = folder.path() / "device";
    const std::filesystem::path other = folder.path() / "other";
    const auto copy = [](const std::filesystem::path &from, const std::filesystem::path &to, const char *options) {
        runTool(QStringLiteral("cp"), {QString::fromLatin1(options), text(from), text(to)});
    };
    // On a device that has the same themes already, so that the backup is as large as the package.
    const auto onFullDevice = [&](const std::function<void()> &work) {
        std::filesystem::remove_all(device);
        std::filesystem::remove_all(other);
        std::filesystem::create_directories(device);
        std::filesystem::create_directories(other);
        copy(folder.path() / "package/.rockbox", device, "-r");
        ::sync(); // neither pays for what the other left
        return seconds(work);
    };
    print("install",
        inTurn(
            [&] {
                return onFullDevice(
                    [&] { (void)Storage::installTheme(archive.toStdString(), device, other / "backup"); });
            },
            [&] {
                return onFullDevice([&] {
                    runTool(QStringLiteral("unzip"),
                        {QStringLiteral("-qq"), archive, QStringLiteral("-d"), text(other / "unpacked")});
                    copy(device / ".rockbox", other / "backup", "-a");
                    copy(other / "unpacked/.rockbox", device, "-r");
                });
            }));
}

} // namespace Bench
