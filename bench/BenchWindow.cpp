#include "BenchWindow.h"

#include <QEventLoop>
#include <QSurfaceFormat>
#include <QTimer>

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

} // namespace Bench
