#include "BenchWindow.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QSurfaceFormat>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace Bench {

void runFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

MarluneApp::Setup emptySetup(const WorkFolder &folder)
{
    static const bool prepared = (MarluneApp::prepareApplication(), true);
    (void)prepared;
    return {.settingsFile = folder.path() / "settings.json",
        .supportFolder = folder.path(),
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .panels = nullptr};
}

double residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double pages = 0;
    double resident = 0;
    statm >> pages >> resident;
    return resident * double(::sysconf(_SC_PAGESIZE));
}

QQuickItem *findItem(QQuickItem *root, const char *name)
{
    if (root->objectName() == QLatin1String(name)) {
        return root;
    }
    for (QQuickItem *child : root->childItems()) {
        if (QQuickItem *found = findItem(child, name)) {
            return found;
        }
    }
    return nullptr;
}

void renderWithoutPause()
{
    qputenv("QSG_RENDER_LOOP", "basic");
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);
}

void printFrames(const char *name, const std::vector<double> &frames)
{
    const auto late = std::count_if(frames.begin(), frames.end(), [](double frame) { return frame > 16; });
    std::printf("%s %zu frames, %zu over 16 ms, median %.1f ms, worst %.1f ms\n", name, frames.size(),
        std::size_t(late), median(frames), *std::max_element(frames.begin(), frames.end()));
}

void scrollThrough(const char *name, QQuickWindow &window, QQuickItem &view, double pixelsPerFrame)
{
    QElapsedTimer sinceFrame;
    std::vector<double> frames; // ms
    QEventLoop scrolling;
    const auto step = [&] {
        const double end // a list may have put rows in before its first
            = view.property("originY").toDouble() + view.property("contentHeight").toDouble() - view.height();
        const double position = view.property("contentY").toDouble();
        if (position >= end - 1) {
            scrolling.quit();
            return;
        }
        view.setProperty("contentY", std::min(position + pixelsPerFrame, end));
        window.update();
    };
    QObject::connect(&window, &QQuickWindow::frameSwapped, &scrolling, [&] {
        frames.push_back(double(sinceFrame.nsecsElapsed()) / 1e6);
        sinceFrame.restart();
        step();
    });
    sinceFrame.start();
    step();
    scrolling.exec();
    printFrames(name, frames);
}

void scrollThrough(const char *name, QQuickWindow &window, QQuickItem &view, int frames)
{
    constexpr double slowest = 40; // pixels a frame
    const double end = view.property("contentHeight").toDouble() - view.height();
    scrollThrough(name, window, view, std::max(slowest, end / frames));
}

} // namespace Bench
