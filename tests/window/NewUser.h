// The window of a new user with a copy of the sample iPod, moved by mouse and keyboard only.
#pragma once

#include "support/CannedServer.h"
#include "support/ModelDesk.h"

#include "ui/MarluneApp.h"

#include <QDropEvent>
#include <QMimeData>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>

inline const fs::path sample = MARLUNE_SAMPLE;

/// A catalogue that finds one release for every search, with a picture.
inline CannedServer::Answer foundCover(const CannedServer::Asked &asked)
{
    const QByteArray releases = R"({"release-groups":[{"id":"0cd1dd5b-3c5e-4d3a-9f0e-000000000001","score":97,
        "title":"Soundings","artist-credit":[{"name":"Low Tide Almanac"}],"first-release-date":"1980"}]})";
    return CannedServer::answer("200 OK",
        asked.target.startsWith("/ws/") ? releases
                                        : QByteArray::fromStdString(fileBytes(dataFile("images/plain.png"))));
}

inline CoverServices coverServices(const CannedServer &server)
{
    return {.catalogue = server.root(),
        .site = server.root(),
        .archive = server.root(),
        .spacing = std::chrono::milliseconds(1),
        .retryPause = std::chrono::milliseconds(1)};
}

/// The visible item of this name, wherever it hangs, popups included; null if there is none.
inline QQuickItem *findItem(QQuickItem *root, const QString &name)
{
    if (!root->isVisible() || root->objectName() == name) {
        return root->isVisible() ? root : nullptr;
    }
    QQuickItem *found = nullptr;
    for (QQuickItem *child : root->childItems()) {
        found = found ? found : findItem(child, name);
    }
    return found;
}

struct NewUser {
    TemporaryFolder folder;
    KeptPanels panels;
    CoverSearch covers;
    fs::path device = folder / "IPOD";
    QStringList languages;
    std::function<std::vector<Device>()> discovery;
    std::function<void(const fs::path &)> ejector = [](const fs::path &) { };
    MarluneApp::Program program;

    explicit NewUser(
        QStringList preferred = {u"pl"_s},
        std::function<std::vector<Device>()> discover = [] { return std::vector<Device> {}; },
        CoverServices services = {})
        : covers(std::move(services))
        , languages(std::move(preferred))
        , discovery(std::move(discover))
        , program(setup())
    {
        fs::copy(sample / "iPod", device, fs::copy_options::recursive);
        program.window()->setGeometry(0, 0, 1260, 820); // a screen without hardware can be smaller
    }

    [[nodiscard]] MarluneApp::Setup setup()
    {
        return {.settingsFile = folder / "config/settings.json",
            .supportFolder = folder / "data",
            .deviceDiscovery = [this] { return discovery(); },
            .ejectVolume = [this](const fs::path &root) { ejector(root); },
            .themeSite = {},
            .covers = &covers,
            .audioOutput = "null",
            .panels = &panels,
            .preferredLanguages = languages};
    }

    [[nodiscard]] QQuickItem *item(const char *name, QQuickItem *below = nullptr) const
    {
        return findItem(below ? below : program.window()->contentItem(), QString::fromLatin1(name));
    }
    /// The first visible one with this text property.
    [[nodiscard]] QQuickItem *itemWith(const char *property, const QString &value, QQuickItem *below = nullptr) const
    {
        QQuickItem *root = below ? below : program.window()->contentItem();
        if (root->isVisible() && root->property(property).toString() == value) {
            return root;
        }
        QQuickItem *found = nullptr;
        for (QQuickItem *child : root->isVisible() ? root->childItems() : QList<QQuickItem *>()) {
            found = found ? found : itemWith(property, value, child);
        }
        return found;
    }
    /// The carousel's window; null while it is closed.
    [[nodiscard]] QQuickWindow *carousel() const
    {
        return program.window()->findChild<QQuickWindow *>(u"coverFlowWindow"_s);
    }
    [[nodiscard]] int count() const { return item("albumGrid") ? item("albumGrid")->property("count").toInt() : 0; }
    [[nodiscard]] QQuickItem *tile(const char *title) const
    {
        for (int i = 0; i < count(); ++i) {
            QQuickItem *tile = nullptr; // stays so for a row that is scrolled out of sight
            QMetaObject::invokeMethod(
                item("albumGrid"), "itemAtIndex", Q_RETURN_ARG(QQuickItem *, tile), Q_ARG(int, i));
            if (tile && tile->property("albumTitle").toString() == QString::fromUtf8(title)) {
                return tile;
            }
        }
        return nullptr;
    }

    void click(QQuickItem *target) const
    {
        QVERIFY(target);
        const auto middle = [target] { return target->mapToScene({target->width() / 2, target->height() / 2}); };
        QPointF centre = middle();
        for (QPointF before(-1, -1); centre != before;
            centre = middle()) { // what has just come is still put in its place
            before = centre;
            QSignalSpy frames(target->window(), &QQuickWindow::frameSwapped);
            target->window()->update();
            frames.wait(1'000);
        }
        QVERIFY(target->window()->contentItem()->contains(centre));
        QTest::mouseClick(target->window(), Qt::LeftButton, Qt::NoModifier, centre.toPoint());
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(program.window(), key, modifiers);
    }
    void type(const QString &text) const
    {
        for (const QChar c : text) {
            QTest::sendKeyEvent(QTest::Click, program.window(), Qt::Key(c.toUpper().unicode()), c, Qt::NoModifier);
        }
    }

    /// Lets files go there that another program's window gave.
    void drop(const QList<QUrl> &urls, const QPoint &place) const
    {
        QMimeData dragged;
        dragged.setUrls(urls);
        QDragEnterEvent enter(place, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(program.window(), &enter);
        QDropEvent dropped(place, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(program.window(), &dropped);
    }

    /// Until no job runs, each result has landed, and the window shows what came of it.
    void settle() const
    {
        for (int round = 0; round < 3; ++round) { // what lands may begin something
            QVERIFY(BackgroundJobs::drain(std::chrono::seconds(20)));
            QSignalSpy frames(program.window(), &QQuickWindow::frameSwapped);
            program.window()->update();
            QVERIFY(frames.wait(5'000));
        }
    }

    void clickNamed(const char *name) const
    {
        QTRY_VERIFY2(item(name) && item(name)->isEnabled(), name);
        click(item(name));
    }

    void searchFor(const char *text) const
    {
        click(item("searchField"));
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_Delete);
        type(QString::fromUtf8(text));
    }

    /// Chooses the device and adds this music.
    void begin(const fs::path &music)
    {
        QVERIFY(QTest::qWaitForWindowExposed(program.window()));
        clickNamed("chooseDeviceButton");
        panels.answer({device});
        QTRY_COMPARE(shownText("deviceName"), std::string("IPOD"));
        QVERIFY(!item("transferButton")->isEnabled());
        clickNamed("addMusicButton");
        panels.answer({music});
        QTRY_VERIFY_WITH_TIMEOUT(!program.model().busy(), 30'000);
    }

    [[nodiscard]] std::string shownText(const char *name) const
    {
        const QQuickItem *found = item(name);
        return found ? found->property("text").toString().toStdString() : std::string();
    }
};
