// From the start of the process to the first frame, each time in a process of its own.
#include "Figures.h"

#include "ui/MarluneApp.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

/// Milliseconds until a process that begins with these settings has drawn its first frame.
double startWith(const std::filesystem::path &folder, const QStringList &libraryPaths)
{
    const QJsonObject settings {{QStringLiteral("libraryPaths"), QJsonArray::fromStringList(libraryPaths)}};
    std::ofstream(folder / "settings.json") << QJsonDocument(settings).toJson().toStdString();
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer since;
    since.start();
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("first-frame"), Bench::text(folder)});
    const bool drawn = process.waitForReadyRead(60'000);
    const double taken = double(since.nsecsElapsed()) / 1e6;
    Bench::require(drawn && process.readLine() == "drawn\n", "a first frame");
    process.waitForFinished();
    return taken;
}

} // namespace

namespace Bench {

int firstFrame(int argc, char **argv, const std::filesystem::path &folder)
{
    const QGuiApplication application(argc, argv);
    MarluneApp::prepareApplication();
    const MarluneApp::Program program({.settingsFile = folder / "settings.json",
        .supportFolder = folder,
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .panels = nullptr});
    QQuickWindow *window = program.window();
    require(window, "the window");
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window,
        [] {
            std::puts("drawn");
            std::fflush(stdout);
            std::_Exit(0); // an import that goes on is not waited for
        },
        Qt::DirectConnection);
    return QGuiApplication::exec();
}

double secondsToFirstFrame(const std::filesystem::path &library)
{
    const WorkFolder folder;
    return startWith(folder.path(), {text(library)}) / 1000;
}

void start(const std::filesystem::path &library)
{
    const WorkFolder folder;
    (void)startWith(folder.path(), {}); // the disk's cache is warm from here on
    const Pair figures = inTurn(
        [&] { return startWith(folder.path(), {text(library)}); }, [&] { return startWith(folder.path(), {}); });
    std::printf("start %.0f ms with the library, %.0f ms without music\n", figures.ours, figures.peer);
}

} // namespace Bench
