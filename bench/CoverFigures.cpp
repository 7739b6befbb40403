// Covers that are repaired in a large library: what each one costs the UI thread, by the page that is shown.
#include "Figures.h"

#include "artwork/Artwork.h"
#include "support/FlacBytes.h"
#include "ui/MarluneApp.h"

#include <QBuffer>
#include <QEventLoop>
#include <QImage>
#include <QTimer>

#include <ctime>

#include <cstdio>
#include <fstream>

namespace {

constexpr int albums = 2000;
constexpr int tracksOfAlbum = 12;
constexpr int unfitAlbums = 40;

QByteArray png(int seed)
{
    QImage picture(300, 300, QImage::Format_RGB32);
    picture.fill(QColor::fromHsv(seed % 360, 200, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    Bench::require(picture.save(&buffer, "png"), "cannot make a cover");
    return bytes;
}

/// Albums of tracks without sound; every fiftieth has a cover that the firmware cannot show.
void makeLibrary(const std::filesystem::path &music)
{
    for (int album = 0; album < albums; ++album) {
        const bool isUnfit = album % (albums / unfitAlbums) == 0;
        const QByteArray cover = isUnfit ? png(album) : Artwork::baselineJPEG(png(album)) + QByteArray::number(album);
        const std::string artist = "Artist " + std::to_string(album % 400);
        const std::string title = "Album " + std::to_string(album);
        const std::filesystem::path folder = music / artist / title;
        std::filesystem::create_directories(folder);
        for (int track = 1; track <= tracksOfAlbum; ++track) {
            const std::string number = std::to_string(track);
            std::ofstream file(folder / (number + ".flac"), std::ios::binary);
            file << "fLaC" << FlacBytes::block(0, FlacBytes::streamInfo(44100, 16, 44100))
                 << FlacBytes::block(6, FlacBytes::picture(3, cover.toStdString()))
                 << FlacBytes::block(4,
                        FlacBytes::comments({"TITLE=Track " + number, "ARTIST=" + artist, "ALBUM=" + title,
                            "TRACKNUMBER=" + number, "DATE=1999"}),
                        true);
        }
    }
}

double uiMilliseconds()
{
    timespec time {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

void runFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitForWork(const MarluneModel &model)
{
    while (model.busy()) {
        runFor(20);
    }
    runFor(1000);
}

} // namespace

namespace Bench {

void covers(const std::filesystem::path &)
{
    static const bool prepared = (MarluneApp::prepareApplication(), true);
    (void)prepared;
    const WorkFolder folder;
    makeLibrary(folder.path() / "Music");
    for (const Section section : {Section::Music, Section::Quality, Section::Themes}) {
        const std::filesystem::path user = folder.path() / sectionTitle(section).toStdString();
        MarluneApp::Program program({.settingsFile = user / "settings.json",
            .supportFolder = user,
            .deviceDiscovery = [] { return std::vector<Device> {}; },
            .ejectVolume = {},
            .panels = nullptr});
        MarluneModel &model = program.model();
        runFor(1000);
        model.importURLs({folder.path() / "Music"}, false, true);
        waitForWork(model);
        model.setSection(section);
        runFor(3000);
        const double before = uiMilliseconds();
        model.repairAvailableCovers();
        waitForWork(model);
        std::printf("covers %.1f ms of the UI thread a cover, on the page %s (%s)\n",
            (uiMilliseconds() - before) / unfitAlbums, sectionTitle(section).toUtf8().constData(),
            model.status().toUtf8().constData());
        std::fflush(stdout);
    }
}

} // namespace Bench
