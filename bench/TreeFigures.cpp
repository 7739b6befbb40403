// The outline of folders in the real window: how long until it stands, and how long the UI thread is held meanwhile.
#include "Figures.h"

#include "ui/MarluneApp.h"

#include "platform/text/TextOrder.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace {

constexpr int treeFiles = 100'000;
constexpr int filesOfOneFolder = 50'000;

/// The longest time in which no event was handled.
class Beat {
public:
    Beat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_longest = std::max(m_longest, m_sinceTick.nsecsElapsed());
            m_sinceTick.restart();
        });
        m_sinceTick.start();
        m_timer.start(1);
    }
    [[nodiscard]] double longest() const { return double(std::max(m_longest, m_sinceTick.nsecsElapsed())) / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0;
};

void waitFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QQuickItem *named(QQuickItem *root, const char *name)
{
    if (root->objectName() == QLatin1String(name)) {
        return root;
    }
    for (QQuickItem *child : root->childItems()) {
        if (QQuickItem *found = named(child, name)) {
            return found;
        }
    }
    return nullptr;
}

QString fileName(int number)
{
    static const std::array words {QStringLiteral("Noc"), QStringLiteral("światło"), QStringLiteral("Żar"),
        QStringLiteral("river"), QStringLiteral("łąka"), QStringLiteral("dawn"), QStringLiteral("Cień")};
    const auto word = [](int seed) { return words[std::size_t(seed) % words.size()]; };
    return QStringLiteral("%1 - ").arg(number % 12 + 1, 2, 10, QLatin1Char('0')) + word(number * 31 / 7) + u' '
        + word(number / 3) + u' ' + QString::number(number * 7919 % 1000);
}

/// An empty file is a track with no tags.
void writeFile(const std::filesystem::path &folder, int number)
{
    std::filesystem::create_directories(folder);
    std::ofstream stream(folder / ((fileName(number) + u' ' + QString::number(number)).toStdString() + ".mp3"));
}

void importAll(MarluneModel &model, const std::filesystem::path &folder)
{
    model.importURLs({folder}, false, false);
    while (model.busy()) {
        waitFor(50);
    }
    waitFor(3000);
}

/// Until a frame shows rows of the outline.
double secondsUntilShown(MarluneApp::Program &program, const std::function<void()> &begin, double &hold)
{
    Beat beat;
    QElapsedTimer timer;
    timer.start();
    begin();
    QEventLoop loop;
    double seconds = 0;
    const auto frame = QObject::connect(program.window(), &QQuickWindow::frameSwapped, &loop, [&] {
        const QQuickItem *tree = named(program.window()->contentItem(), "folderTree");
        if (tree && tree->property("count").toInt() > 0) {
            seconds = double(timer.nsecsElapsed()) / 1e9;
            loop.quit();
        }
    });
    program.window()->update();
    loop.exec();
    QObject::disconnect(frame);
    hold = std::max(hold, beat.longest());
    return seconds;
}

double secondsToSort(int count)
{
    std::vector<QCollatorSortKey> keys;
    for (int i = 0; i < count; ++i) {
        keys.push_back(TextOrder::key(fileName(i)));
    }
    return Bench::seconds([&] { std::sort(keys.begin(), keys.end()); });
}

} // namespace

namespace Bench {

void tree(const std::filesystem::path &)
{
    const WorkFolder folder;
    for (int i = 0; i < treeFiles; ++i) {
        const int album = i * 2 / 25;
        writeFile(folder.path() / "music" / ("Artist " + std::to_string(album / 5))
                / (std::to_string(album % 5) + " - " + fileName(album * 12).toStdString()),
            i);
    }
    MarluneApp::prepareApplication();
    MarluneApp::Program program({.settingsFile = folder.path() / "settings.json",
        .supportFolder = folder.path(),
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .panels = nullptr});
    MarluneModel &model = program.model();
    importAll(model, folder.path() / "music");

    double hold = 0;
    std::printf("tree-first %.3f s\n",
        secondsUntilShown(program, [&] { model.setViewMode(viewModeText(ViewMode::Folders)); }, hold));
    std::printf("tree-first-hold %.1f ms\n", hold);
    hold = 0;
    print("tree",
        inTurn(
            [&] {
                model.setLibraryOnDevice(true);
                waitFor(500);
                double other = 0;
                const double time = secondsUntilShown(program, [&] { model.setLibraryOnDevice(false); }, other);
                hold = std::max(hold, other);
                return time;
            },
            [] { return secondsToSort(treeFiles); }));
    std::printf("tree-hold %.1f ms at %zu tracks\n", hold, model.tracks().size());

    for (int i = 0; i < filesOfOneFolder; ++i) {
        writeFile(folder.path() / "flat/one", i);
    }
    importAll(model, folder.path() / "flat");
    QQuickItem *view = named(program.window()->contentItem(), "folderTree");
    auto *rows = view ? view->property("model").value<QAbstractItemModel *>() : nullptr;
    require(rows, "the outline");
    for (const char *name : {"flat", "one"}) {
        int row = 0;
        while (row < rows->rowCount() && rows->index(row, 0).data().toString() != QLatin1String(name)) {
            ++row;
        }
        const Beat beat;
        QMetaObject::invokeMethod(rows, "setOpen", Q_ARG(int, row), Q_ARG(bool, true));
        waitFor(500);
        std::printf("tree-open %.1f ms, %d rows\n", beat.longest(), rows->rowCount());
    }
}

} // namespace Bench
