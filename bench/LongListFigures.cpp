// Many tracks: what their lists take, and how soon the window shows them.
#include "BenchWindow.h"
#include "MadeLibrary.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

using Bench::require;

/// The longest time for which the event loop did not come round.
class Beat {
public:
    Beat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_longest = std::max(m_longest, m_since.nsecsElapsed());
            m_since.restart();
        });
        m_since.start();
        m_timer.start(1);
    }
    /// Milliseconds since the last call.
    [[nodiscard]] double takeLongest() { return double(std::exchange(m_longest, 0)) / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
};

struct View {
    const char *mode;
    const char *item;
};
constexpr View albumsView {"Albumy", "albumGrid"};
constexpr View tracksView {"Utwory", "trackList"};
constexpr View foldersView {"Foldery", "folderTree"};

/// The real window with many tracks.
class ManyTracks {
public:
    ManyTracks()
        : m_program((Bench::renderWithoutPause(), setup(m_folder)))
    {
        window().setGeometry(0, 0, 1260, 820);
        Bench::runFor(500);
        (void)beat.takeLongest();
        model().importURLs({m_folder.path()}, false, true);
        while (model().busy()) {
            Bench::runFor(20);
        }
        Bench::runFor(2000);
        std::printf("held %.0f ms while %zu tracks landed\n", beat.takeLongest(), model().tracks().size());
    }

    [[nodiscard]] MarluneModel &model() { return m_program.model(); }
    [[nodiscard]] QQuickWindow &window() { return *m_program.window(); }
    [[nodiscard]] QQuickItem &item(const char *name)
    {
        QQuickItem *found = Bench::findItem(window().contentItem(), name);
        require(found, name);
        return *found;
    }
    void show(const View &view)
    {
        model().setViewMode(QString::fromUtf8(view.mode));
        Bench::runFor(1000);
        require(item(view.item).isVisible(), view.item);
    }
    void type(QChar letter, int key)
    {
        for (const QEvent::Type event : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent press(event, key, Qt::NoModifier, letter.isNull() ? QString() : QString(letter));
            QCoreApplication::sendEvent(&window(), &press);
        }
    }
    /// Milliseconds from the action to the end of the first frame in which the view's rows have changed.
    template <typename Action> double untilShown(QQuickItem &view, const Action &action)
    {
        auto *rows = view.property("model").value<QAbstractItemModel *>();
        require(rows, "the view's rows");
        QEventLoop loop;
        bool haveChanged = false;
        const auto change = [&] {
            haveChanged = true;
            window().update();
        };
        QObject::connect(rows, &QAbstractItemModel::modelReset, &loop, change);
        QObject::connect(rows, &QAbstractItemModel::layoutChanged, &loop, change);
        QObject::connect(rows, &QAbstractItemModel::rowsInserted, &loop, change);
        QObject::connect(rows, &QAbstractItemModel::rowsRemoved, &loop, change);
        QObject::connect(&window(), &QQuickWindow::frameSwapped, &loop, [&] {
            if (haveChanged) {
                loop.quit();
            }
        });
        QTimer::singleShot(5000, &loop, &QEventLoop::quit);
        return 1000 * Bench::seconds([&] {
            action();
            loop.exec();
            require(haveChanged, "a change of the rows");
        });
    }

    Beat beat;

private:
    static MarluneApp::Setup setup(const Bench::WorkFolder &folder)
    {
        MarluneApp::Setup setup = Bench::emptySetup(folder);
        setup.readTracks = Bench::readManyTracks;
        return setup;
    }

    Bench::WorkFolder m_folder;
    MarluneApp::Program m_program;
};

/// What the processor did for this thread tells more than the clock while the machine has other work.
double processorMilliseconds()
{
    timespec now {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

void printTime(const char *what, const std::function<void()> &work)
{
    const double before = processorMilliseconds();
    const double taken = 1000 * Bench::seconds(work);
    std::printf("lists: %s %.1f ms, of the processor %.1f ms\n", what, taken, processorMilliseconds() - before);
}

} // namespace

namespace Bench {

void lists(const std::filesystem::path &)
{
    std::vector<Track> tracks = makeTracks(manyTracks);
    Browsing browsing;
    LibraryContents made;
    printTime("made in a job",
        [&] { made = LibraryContents().prepared(std::make_shared<const std::vector<Track>>(std::move(tracks))); });
    printTime("landed", [&] { require(browsing.land(Side::Computer, browsing.contents(Side::Computer), made), "it"); });
    made = {};
    const auto read = [&] {
        (void)browsing.albums();
        (void)browsing.filteredTracks();
    };
    for (const char *text : {"n", "no", "noc", "noc 1", "ż", ""}) {
        printTime((std::string("search ") + text).c_str(), [&] {
            browsing.setSearch(QString::fromUtf8(text));
            read();
        });
    }
    printTime("order", [&] {
        browsing.setSortMode(QStringLiteral("Album"));
        read();
    });
    printTime("everything queued", [&] {
        browsing.enqueue(browsing.activeTracks());
        (void)browsing.queueBytes();
    });
    const auto idsOf = [&](std::size_t album) {
        QSet<QUuid> ids;
        for (const Track &track : browsing.everyAlbum()[album]->tracks) {
            ids.insert(track.id);
        }
        return ids;
    };
    printTime("one cover", [&] {
        browsing.setArtwork(Side::Computer, idsOf(4000), "picture");
        read();
    });
    printTime("one cover while a job holds the tracks", [&] {
        const LibraryContents held = browsing.contents(Side::Computer);
        browsing.setArtwork(Side::Computer, idsOf(4001), "picture");
        read();
    });
    printTime("one album forgotten", [&] {
        browsing.remove(idsOf(4000));
        read();
    });
    printTime("one album looked up", [&] {
        (void)browsing.albumWith(browsing.activeTracks()[60'000].id);
        (void)browsing.albumOf(Side::Computer, browsing.everyAlbum()[7000]->id());
    });
}

void table(const std::filesystem::path &)
{
    ManyTracks desk;
    print("table",
        inTurn(
            [&] {
                desk.show(albumsView);
                (void)desk.beat.takeLongest();
                QEventLoop loop;
                QObject::connect(&desk.window(), &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit);
                const double time = seconds([&] {
                    desk.model().setViewMode(QString::fromUtf8(tracksView.mode));
                    loop.exec();
                });
                std::printf("table: %.1f ms, held %.1f ms\n", 1000 * time, desk.beat.takeLongest());
                require(desk.item(tracksView.item).isVisible(), tracksView.item);
                return time;
            },
            secondsToSortByKeys));
}

void typing(const std::filesystem::path &)
{
    ManyTracks desk;
    QQuickItem &field = desk.item("searchField");
    for (const View &view : {albumsView, tracksView, foldersView}) {
        desk.show(view);
        field.forceActiveFocus();
        std::vector<double> times;
        (void)desk.beat.takeLongest();
        for (int round = 0; round < 3; ++round) {
            for (const char letter : {'6', '9', ' ', 'd', '\b', '\b', '\b', '\b'}) {
                times.push_back(desk.untilShown(desk.item(view.item), [&] {
                    if (letter == '\b') {
                        desk.type(QChar(), Qt::Key_Backspace);
                    } else {
                        desk.type(QChar::fromLatin1(letter), std::toupper(letter));
                    }
                }));
                runFor(150);
            }
        }
        std::printf("typing in %s: median %.1f ms, worst %.1f ms, held %.1f ms\n", view.item, median(times),
            *std::max_element(times.begin(), times.end()), desk.beat.takeLongest());
    }
}

void scrollMany(const std::filesystem::path &)
{
    renderWithoutPause();
    constexpr int frames = 6000; // from end to end
    ManyTracks desk;
    desk.show(tracksView);
    scrollThrough("scroll-many-tracks", desk.window(), desk.item(tracksView.item), frames);
    desk.show(foldersView);
    desk.item(foldersView.item).forceActiveFocus();
    auto *rows = desk.item(foldersView.item).property("model").value<QAbstractItemModel *>();
    require(QMetaObject::invokeMethod(rows, "openBelow", Q_ARG(int, 0)), "the outline");
    runFor(1000);
    scrollThrough("scroll-many-folders", desk.window(), desk.item(foldersView.item), frames);
}

} // namespace Bench
