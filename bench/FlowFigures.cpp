// The carousel of a device's covers: how soon it stands, which frames come late while it moves, what it holds in
// memory.
#include "BenchWindow.h"

#include "ui/flow/FlowPictures.h"

#include <QAnimationDriver>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>

#include <malloc.h>

#include <algorithm>
#include <cstdio>

namespace {

/// Lets animations go on with the frames instead of with a timer of their own.
class FrameDriver : public QAnimationDriver {
public:
    FrameDriver() { install(); }
    void advance() override { advanceAnimation(); }
};

/// The device's folder, whose music are links to the library's files.
Device makeDevice(const std::filesystem::path &root, const std::filesystem::path &library)
{
    std::filesystem::create_directories(root / ".rockbox");
    Bench::runTool(QStringLiteral("cp"), {QStringLiteral("-al"), Bench::text(library), Bench::text(root / "Music")});
    return Device::inspect(root);
}

class Carousel {
public:
    explicit Carousel(MarluneApp::Program &program)
    {
        program.model().revealCoverFlow();
        m_window = program.window()->findChild<QQuickWindow *>(QStringLiteral("coverFlowWindow"));
        Bench::require(m_window, "the carousel's window");
        QObject::connect(m_window, &QQuickWindow::frameSwapped, m_window, [this] {
            if (std::exchange(m_hasMoved, false)) {
                m_frames.push_back(double(m_sinceFrame.nsecsElapsed()) / 1e6);
            }
            m_sinceFrame.restart();
            if (m_isMoved) {
                m_driver.advance();
                m_window->update();
            }
        });
    }

    [[nodiscard]] bool stands() const { return stage() && stage()->property("count").toInt() > 0; }
    [[nodiscard]] bool isMoving() const { return stage()->property("moving").toBool(); }
    /// How many of the covers in sight are not the large ones yet.
    [[nodiscard]] int awaited() const
    {
        const auto *pictures = stage()->property("pictures").value<FlowPictures *>();
        const int index = stage()->property("index").toInt();
        const int last = stage()->property("count").toInt() - 1;
        int awaited = 0;
        for (int place = std::max(0, index - 3); place <= std::min(last, index + 3); ++place) {
            awaited += pictures->isFinal(place) ? 0 : 1;
        }
        return awaited;
    }
    void pressRight()
    {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, Qt::Key_Right, Qt::NoModifier);
            QCoreApplication::sendEvent(m_window, &event);
        }
    }
    /// Draws frame after frame until `isDone`, asked after each.
    template <typename IsDone> void drawUntil(const IsDone &isDone)
    {
        QEventLoop loop;
        const auto connection = QObject::connect(m_window, &QQuickWindow::frameSwapped, &loop, [&] {
            if (isDone()) {
                loop.quit();
            }
        });
        m_isMoved = true;
        m_window->update();
        m_sinceFrame.restart();
        loop.exec();
        m_isMoved = false;
        QObject::disconnect(connection);
    }
    /// From now on the frames in which the cards move are counted.
    void watchCards()
    {
        for (QQuickItem *card : stage()->childItems()) {
            QObject::connect(card, &QQuickItem::zChanged, m_window, [this] { m_hasMoved = true; });
        }
    }
    /// Those since the last call, in milliseconds.
    std::vector<double> frames() { return std::exchange(m_frames, {}); }

private:
    [[nodiscard]] QQuickItem *stage() const { return Bench::findItem(m_window->contentItem(), "flowStage"); }

    FrameDriver m_driver;
    QQuickWindow *m_window = nullptr;
    QElapsedTimer m_sinceFrame;
    std::vector<double> m_frames;
    bool m_isMoved = false; ///< frame after frame is drawn
    bool m_hasMoved = false; ///< since the last frame
};

} // namespace

namespace Bench {

void flow(const std::filesystem::path &library)
{
    renderWithoutPause();
    const WorkFolder folder;
    const Device device = makeDevice(folder.path() / "IPOD", library);
    MarluneApp::Setup setup = emptySetup(folder);
    setup.deviceDiscovery = [device] { return std::vector<Device> {device}; };
    MarluneApp::Program program(setup);
    program.window()->setGeometry(0, 0, 1260, 820);
    MarluneModel &model = program.model();
    while (!model.device() || model.busy()) {
        runFor(20);
    }
    model.scanDeviceMusic();
    while (model.busy()) {
        runFor(20);
    }
    runFor(3000);

    ::malloc_trim(0); // what the reading has left behind is not to hide what comes
    const double before = residentBytes();
    QElapsedTimer clock;
    clock.start();
    Carousel carousel(program);
    carousel.drawUntil([&] { return carousel.stands() && carousel.awaited() == 0; });
    std::printf("flow-first %lld ms until all covers in sight stand\n", static_cast<long long>(clock.elapsed()));

    runFor(500);
    carousel.watchCards();
    constexpr int steps = 300;
    constexpr int stepsPerSecond = 30;
    int pressed = 0;
    int blurred = 0; // frames in which a cover in sight was not the large one
    QTimer arrow;
    arrow.setTimerType(Qt::PreciseTimer);
    QObject::connect(&arrow, &QTimer::timeout, [&] {
        if (++pressed <= steps) {
            carousel.pressRight();
        }
    });
    arrow.start(1000 / stepsPerSecond);
    carousel.drawUntil([&] {
        blurred += carousel.awaited() > 0 ? 1 : 0;
        return pressed > steps && !carousel.isMoving();
    });
    arrow.stop();
    printFrames("flow-held", carousel.frames());
    std::printf("flow-held %d frames with a cover that was still small\n", blurred);
    clock.restart();
    carousel.drawUntil([&] { return carousel.awaited() == 0; });
    std::printf("flow-held %lld ms until all covers in sight stand\n", static_cast<long long>(clock.elapsed()));

    (void)carousel.frames();
    std::vector<double> frames;
    for (int step = 0; step < 40; ++step) {
        carousel.pressRight();
        carousel.drawUntil([&] { return !carousel.isMoving(); });
        const std::vector<double> more = carousel.frames();
        frames.insert(frames.end(), more.begin(), more.end());
        runFor(150);
        (void)carousel.frames();
    }
    printFrames("flow-steps", frames);
    runFor(2000); // what is still decoded comes in
    std::printf("flow-memory %.1f MB above %.1f MB\n", (residentBytes() - before) / 1e6, before / 1e6);
}

} // namespace Bench
