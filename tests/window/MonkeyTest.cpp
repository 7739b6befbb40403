// A monkey at the real window: random clicks, keys, wheel turns, drags, drops and resizes over all pages, while the
// device is pulled and comes back and disk calls fail. Nothing may crash or hang, no QML may warn, no work may stay
// under way, and no file of the user's may change.
//
// For longer, or again what it did: MONKEY_STEPS=10000 MONKEY_SEED=7 monkey_test
#include "NewUser.h"

#include "support/Archives.h"
#include "support/CannedServer.h"
#include "support/FailingDisk.h"

#include "ui/theme/DesktopScheme.h"
#include "ui/words/Language.h"

#include <QJsonDocument>
#include <QMimeData>
#include <QQmlEngine>
#include <QRandomGenerator>
#include <QTimer>

#include <set>

namespace {

QStringList complaints; ///< of QML, since the start

void keepComplaints(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QByteArray category = context.category ? context.category : "";
    if (type != QtDebugMsg && (category == "qml" || category == "js" || message.contains(u"qrc:"_s))) {
        complaints.append(message);
    }
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

/// The disk that comes and goes: found while it is plugged in.
struct Socket {
    fs::path device;
    std::atomic<bool> plugged = false;
    std::atomic<bool> ejected = false;
};

std::vector<Device> discover(const Socket &socket)
{
    if (!socket.plugged) {
        return {};
    }
    try {
        Device device = Device::inspect(socket.device);
        device.isVolume = true;
        return {device};
    } catch (const std::exception &) {
        return {}; // pulled meanwhile
    }
}

/// The music among the files, by relative path.
std::map<std::string, std::string> musicBelow(const fs::path &folder)
{
    auto files = filesBelow(folder);
    std::erase_if(files, [](const auto &file) {
        const fs::path name = fs::path(file.first).filename();
        return name.string().starts_with("._")
            || !std::set<fs::path> {".flac", ".mp3", ".m4a", ".ogg", ".opus", ".wav"}.contains(name.extension());
    });
    return files;
}

class Monkey {
public:
    Monkey(NewUser &user, Socket &socket, quint32 seed)
        : m_user(user)
        , m_socket(socket)
        , m_random(seed)
    {
        user.folder.write("theme.zip", "no archive");
        fs::copy_file(archive("plain.zip"), user.folder / "good.zip");
        user.ejector = [&socket](const fs::path &) { socket.ejected = true; };
    }

    void step()
    {
        static const std::vector<std::pair<int, void (Monkey::*)()>> deeds = {{24, &Monkey::clickAnywhere},
            {24, &Monkey::clickControl}, {26, &Monkey::pressKey}, {8, &Monkey::turnWheel}, {6, &Monkey::drag},
            {2, &Monkey::drop}, {2, &Monkey::resize}, {3, &Monkey::openPage}, {2, &Monkey::answerPanel},
            {1, &Monkey::plugOrPull}, {1, &Monkey::breakDisk}, {1, &Monkey::changeLooks}};
        m_window = m_user.carousel() && below(3) == 0 ? m_user.carousel() : m_user.program.window();
        int choice = below(100);
        for (const auto &[share, deed] : deeds) {
            if (choice < share) {
                (this->*deed)();
                break;
            }
            choice -= share;
        }
        if (m_socket.ejected.exchange(false)) {
            pull();
        }
        QTest::qWait(below(10) == 0 ? 40 : 1);
        if (!m_user.program.window()->isVisible()) { // it has closed the window
            m_user.program.window()->show();
        }
        for (auto &[place, visits] : m_visits) {
            visits += m_user.item(place) || (m_user.carousel() && m_user.item(place, m_user.carousel()->contentItem()));
        }
    }

    /// In how many steps each view, page and sheet was seen.
    [[nodiscard]] const std::map<const char *, int> &visits() const { return m_visits; }

    void plug()
    {
        if (!m_socket.plugged) {
            fs::rename(parked(), m_socket.device);
            m_socket.plugged = true;
            m_user.program.model().volumeMounted();
        }
    }
    void pull()
    {
        if (m_socket.plugged.exchange(false)) {
            fs::rename(m_socket.device, parked());
            m_user.program.model().volumeUnmounted(m_socket.device);
        }
    }

private:
    [[nodiscard]] QQuickWindow &window() const { return *m_window; }
    [[nodiscard]] fs::path parked() const { return m_user.folder / "unplugged"; }
    int below(int limit) { return m_random.bounded(limit); }
    template <typename Values> auto &oneOf(Values &values)
    {
        return *(std::begin(values) + below(int(std::size(values))));
    }
    QPoint anywhere() { return {below(window().width()), below(window().height())}; }
    Qt::KeyboardModifiers modifiers()
    {
        static const QList<Qt::KeyboardModifiers> some {Qt::NoModifier, Qt::NoModifier, Qt::NoModifier,
            Qt::ShiftModifier, Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier};
        return oneOf(some);
    }

    void clickAt(const QPoint &place)
    {
        const Qt::MouseButton button = below(6) == 0 ? Qt::RightButton : Qt::LeftButton;
        if (below(8) == 0) {
            QTest::mouseDClick(&window(), button, modifiers(), place);
        } else {
            QTest::mouseClick(&window(), button, modifiers(), place);
        }
    }
    void clickAnywhere() { clickAt(anywhere()); }

    void clickControl()
    {
        QList<QQuickItem *> controls;
        gatherControls(*window().contentItem(), controls);
        if (!controls.isEmpty()) {
            const QQuickItem &control = *oneOf(controls);
            clickAt(control.mapToScene({control.width() / 2, control.height() / 2}).toPoint());
        }
    }
    void gatherControls(QQuickItem &root, QList<QQuickItem *> &controls) const
    {
        for (QQuickItem *item : root.childItems()) {
            if (item->isVisible() && item->isEnabled()) {
                if (item->inherits("QQuickAbstractButton") || item->inherits("QQuickTextInput")) {
                    controls.append(item);
                }
                gatherControls(*item, controls);
            }
        }
    }

    void pressKey()
    {
        static const QList<Qt::Key> keys {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Up, Qt::Key_Down, Qt::Key_Left,
            Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Space, Qt::Key_Return,
            Qt::Key_Escape, Qt::Key_Escape, Qt::Key_Menu, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_F10,
            Qt::Key_Asterisk, Qt::Key_A, Qt::Key_F, Qt::Key_O, Qt::Key_S};
        const Qt::Key key = oneOf(keys);
        const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z;
        QTest::sendKeyEvent(
            QTest::Click, &window(), key, isLetter ? QString(QChar(key).toLower()) : QString(), modifiers());
    }
    void turnWheel()
    {
        const QPoint place = anywhere();
        for (int turns = 1 + below(8); turns > 0; --turns) {
            const QPoint angle(0, (below(2) * 2 - 1) * 120 * (1 + below(5)));
            QWheelEvent turn(place, place, {}, angle, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&window(), &turn);
        }
    }

    /// By a timer: a drag of files out of the window runs an event loop of its own until the button is let go.
    void drag()
    {
        const QPoint from = anywhere();
        const QPoint to = anywhere();
        QTimer::singleShot(15, &window(), [this, to] { QTest::mouseMove(&window(), to); });
        QTimer::singleShot(
            25, &window(), [this, to] { QTest::mouseRelease(&window(), Qt::LeftButton, Qt::NoModifier, to); });
        QTest::mousePress(&window(), Qt::LeftButton, modifiers(), from);
        QTest::mouseMove(&window(), from + (to - from) / 3);
        QTest::mouseMove(&window(), from + (to - from) / 2);
        QTest::qWait(40);
    }

    void drop()
    {
        static const QList<QUrl> urls {QUrl(u"https://example.org/a.flac"_s), QUrl(u"file:///nowhere/at/all.flac"_s),
            QUrl::fromLocalFile(textOf(m_user.folder / "theme.zip")),
            QUrl::fromLocalFile(textOf(m_user.folder / "good.zip")), QUrl::fromLocalFile(textOf(m_user.folder.path())),
            QUrl::fromLocalFile(textOf(m_user.folder / "music")), QUrl::fromLocalFile(textOf(m_socket.device))};
        QMimeData dragged;
        dragged.setUrls(below(2) == 0 ? QList {oneOf(urls)} : QList {oneOf(urls), oneOf(urls)});
        const QPoint place = anywhere();
        QDragEnterEvent enter(place, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window(), &enter);
        if (below(4) == 0) {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(&window(), &leave);
        } else if (enter.isAccepted()) {
            QDropEvent dropped(place, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&window(), &dropped);
        }
    }
    static QString textOf(const fs::path &path) { return QString::fromStdString(path.string()); }

    void resize() { window().resize(1050 + below(500), 690 + below(300)); }
    /// Most of all the library, with all of its music: what hides or forgets it is soon found.
    void openPage()
    {
        MarluneModel &model = m_user.program.model();
        model.setSection(below(2) == 0 ? Section::Music : oneOf(allSections));
        model.setViewMode(viewModeText(oneOf(allViewModes)));
        model.setSearch({});
        if (below(6) == 0) {
            model.revealCoverFlow();
            model.scanDeviceMusic();
        }
        model.setFormatFilter(formatFilterText(FormatFilter::Everything));
        if (model.activeTracks().empty()) {
            model.setLibraryOnDevice(false);
            model.importURLs({m_user.folder / "music"}, false, below(2) == 0);
        }
    }

    void answerPanel()
    {
        const std::vector<std::vector<fs::path>> answers {{}, {m_socket.device}, {m_user.folder / "music"},
            {m_user.folder / "theme.zip"}, {m_user.folder / "good.zip"}, {dataFile("images/plain.png")},
            {m_user.folder / "gone.png"}, {sample / "iPod/.rockbox/rockbox-info.txt"}};
        if (const auto answer = std::exchange(m_user.panels.answer, {})) {
            answer(oneOf(answers));
        }
    }
    void plugOrPull() { m_socket.plugged ? pull() : plug(); }
    void breakDisk() { FailingDisk::failAfter(below(60)); }

    void changeLooks()
    {
        auto *scheme = qmlEngine(m_user.item("content"))
                           ->singletonInstance<DesktopScheme *>(qmlTypeId("Marlune", 1, 0, "DesktopScheme"));
        switch (below(3)) {
        case 0:
            scheme->setDark(!scheme->dark());
            break;
        case 1:
            scheme->setTextScale(below(2) == 0 ? 1 : 1.5);
            break;
        default:
            Language::create(nullptr, nullptr)->setChoice(below(2) == 0 ? u"pl"_s : u"en"_s);
        }
    }

    NewUser &m_user;
    Socket &m_socket;
    QRandomGenerator m_random;
    QPointer<QQuickWindow> m_window; ///< in which it is at work
    std::map<const char *, int> m_visits {{"albumGrid", 0}, {"trackList", 0}, {"folderTree", 0}, {"sheetTitle", 0},
        {"wholeCover", 0}, {"searchButton", 0}, {"resultList", 0}, {"themeGrid", 0}, {"ownPictureButton", 0},
        {"issueList", 0}, {"fileList", 0}, {"deviceBackUpButton", 0}, {"findCount", 0}, {"alertOk", 0},
        {"flowStage", 0}, {"readAlbumsButton", 0}};
};

int numberFrom(const char *variable, int otherwise)
{
    bool isGiven = false;
    const int number = qEnvironmentVariableIntValue(variable, &isGiven);
    return isGiven ? number : otherwise;
}

} // namespace

class MonkeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(fs::exists(sample / "Music"));
        MarluneApp::prepareApplication();
    }

    void harmsNothing()
    {
        const auto seed = quint32(numberFrom("MONKEY_SEED", 20261));
        const int steps = numberFrom("MONKEY_STEPS", 600);
        std::printf("seed %u, %d steps\n", seed, steps);
        const QtMessageHandler before = qInstallMessageHandler(keepComplaints);
        const auto socket = std::make_shared<Socket>();
        CannedServer server {{}};
        server.answering = foundCover;
        QByteArray settings;
        {
            FailingDisk disk(0); // outlives all that writes
            NewUser user({u"pl"_s}, [socket] { return discover(*socket); }, coverServices(server));
            socket->device = user.device;
            fs::create_directory(user.folder / "music");
            for (const char *artist : {"Halcyon Ferry", "Low Tide Almanac", "Lena Brzask"}) {
                fs::copy(sample / "Music" / artist, user.folder / "music" / artist, fs::copy_options::recursive);
            }
            const auto music = musicBelow(user.folder / "music");
            const auto onDevice = musicBelow(user.device);
            QVERIFY(music.size() > 10 && !onDevice.empty());
            fs::rename(user.device, user.folder / "unplugged");
            Monkey monkey(user, *socket, seed);
            monkey.plug();
            QVERIFY(QTest::qWaitForWindowExposed(user.program.window()));
            user.program.model().importURLs({user.folder / "music"}, false, true);
            for (int i = 0; i < steps; ++i) {
                monkey.step();
                QVERIFY2(complaints.isEmpty(), qPrintable(u"step %1: %2"_s.arg(i).arg(complaints.join(u"; "_s))));
            }
            for (const auto &[place, visits] : monkey.visits()) {
                std::printf("%s: %d\n", place, visits);
            }
            monkey.plug();
            MarluneModel &model = user.program.model();
            QTRY_VERIFY_WITH_TIMEOUT(!model.busy() && !model.working(), 60'000);
            QCOMPARE(musicBelow(user.folder / "music"), music);
            for (const auto &[path, bytes] : onDevice) {
                QVERIFY2(fileBytes(user.device / path) == bytes, path.c_str());
            }
            FailingDisk::heal();
            model.setTileSize(199); // what is chosen from now on is kept
            QTRY_VERIFY((settings = QByteArray::fromStdString(fileBytes(user.folder / "config/settings.json")))
                    .contains("199"));
        }
        QVERIFY2(complaints.isEmpty(), qPrintable(complaints.join(u"; "_s)));
        QVERIFY(QJsonDocument::fromJson(settings).isObject());
        qInstallMessageHandler(before);
    }
};

QTEST_MAIN(MonkeyTest)
#include "MonkeyTest.moc"
