// A new user's road through the real window, by mouse and keyboard only: choose the device, add music, search, queue,
// transfer, transfer again, listen, and on through the pages; in both languages.
#include "NewUser.h"

#include "ui/shell/DesktopPanels.h"
#include "ui/words/Language.h"
#include "ui/words/Localization.h"

#include "platform/MarluneError.h"

#include <QStyleHints>

class WindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(fs::exists(sample / "Music"));
        MarluneApp::prepareApplication();
    }

    void refusesToShareItsSettingsWithASecondProgram()
    {
        NewUser user;
        QVERIFY_EXCEPTION_THROWN(MarluneApp::Program(user.setup()), MarluneError);
    }

    void takesMusicFromAFolderToADevice_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("Polish") << u"pl"_s;
        QTest::newRow("English") << u"en"_s;
    }

    void takesMusicFromAFolderToADevice()
    {
        QFETCH(QString, language);
        NewUser user({language});
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music");
        QVERIFY(model.tracks().size() > 40);
        QCOMPARE(std::size_t(model.queued().size()), model.tracks().size());
        QTRY_VERIFY(user.count() >= 3);

        user.clickNamed("clearQueueButton");
        QVERIFY(model.queued().isEmpty());
        user.searchFor("nothing has this name");
        QTRY_VERIFY(user.item("emptyState"));
        user.searchFor("soundings");
        QTRY_VERIFY(user.count() == 1 && user.tile("Soundings"));

        const std::size_t before = filesBelow(user.device / "Music").size();
        for (const int copied : {8, 0}) {
            user.click(user.item("queueButton", user.tile("Soundings")));
            user.clickNamed("transferButton");
            QTRY_VERIFY_WITH_TIMEOUT(model.alert(), 30'000);
            QVERIFY(model.alert()->startsWith(u"Wgrano: %1. Pominięto identyczne: %2."_s.arg(copied).arg(8 - copied)));
            QCOMPARE(filesBelow(user.device / "Music/Low Tide Almanac/Soundings").size(), 8U + 2U); // a cover a disc
            QCOMPARE(filesBelow(user.device / "Music").size(), before + 8U + 2U);
            QTRY_VERIFY(user.item("alertOk"));
            QTest::keyClick(user.program.window(), Qt::Key_Escape);
            QTRY_VERIFY(!user.item("alertOk") && !model.alert());
        }
        listenToTheOnlyAlbum(user);
        findTheCarousel(user);
        walkThroughThePages(user, language == u"en");
        endTheProgram(user);
    }

    void asksForWhatIsWanted()
    {
        NewUser user;
        auto &panels = *user.program.window()->property("panels").value<DesktopPanels *>();
        std::vector<std::pair<const char *, Panels::Request>> questions {{"filesDialog", {}}, {"folderDialog", {}},
            {"placeChoice", {}}, {"picturesDialog", Panels::Request::onePicture({})}, {"archivesDialog", {}}};
        questions[1].second.folders = questions[2].second.folders = true;
        questions[2].second.files = true;
        questions[4].second.archives = true;
        for (const auto &question : questions) {
            panels.open(question.second, {});
            for (const auto &[name, request] : questions) {
                const QObject *dialog = user.program.window()->findChild<QObject *>(QString::fromLatin1(name));
                QCOMPARE(dialog->property("visible").toBool(), name == question.first);
            }
            QMetaObject::invokeMethod(
                user.program.window()->findChild<QObject *>(QString::fromLatin1(question.first)), "close");
            QTest::qWait(300); // it goes out of sight
        }
    }

    void speaksTheUsersLanguage()
    {
        NewUser user({u"de-DE"_s, u"pl"_s}); // the first counts, and there are two languages
        QCOMPARE(user.shownText("queueLine"), std::string("Tracks: 0 · 0 B"));
        QCOMPARE(user.program.model().playlistName(), u"My playlist"_s);
    }

    void speaksAnotherLanguageWithoutMoving()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        QQuickWindow &window = *user.program.window();
        user.begin(sample / "Music/Low Tide Almanac");
        window.setGeometry(17, 23, 1101, 707);
        const QRect place = window.geometry();
        model.chooseDevice();
        user.panels.answer({user.folder / "nothing"}); // which leaves an alert open
        QTRY_VERIFY(user.item("alertOk"));
        Language &language = *Language::create(nullptr, nullptr);
        for (const auto &[choice, code, alert, size] :
            {std::tuple("en", "en", "This folder does not contain", "Tracks: 8 · 1.6 MB"),
                std::tuple("system", "pl", "Ten folder nie zawiera", "8 utworów · 1,6 MB")}) {
            language.setChoice(QString::fromLatin1(choice));
            QCOMPARE(language.code(), QString::fromLatin1(code));
            QTRY_COMPARE(user.shownText("queueLine"), std::string(size));
            QCOMPARE(window.geometry(), place);
            QVERIFY(user.item("alertOk") && model.alert());
            QVERIFY(user.shownText("alertMessage").starts_with(alert));
            QTRY_COMPARE(window.activeFocusItem(), user.item("alertOk"));
        }
        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk") && !model.alert());
        const QQuickItem &picker = *user.item("languagePicker");
        QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier,
            picker.mapToScene({picker.width() * 0.28, picker.height() / 2}).toPoint()); // "EN"
        QTRY_COMPARE(user.shownText("queueLine"), std::string("Tracks: 8 · 1.6 MB"));
        QTRY_COMPARE(window.activeFocusItem()->property("text").toString(), u"EN"_s);
        QCOMPARE(Settings(user.folder / "config/settings.json").text(u"appLanguage"_s), u"en"_s);
        for (const Section section : allSections) {
            model.setSection(section);
            QTest::qWait(100); // the page is made, and its rows come in
            QCOMPARE(leftInPolish(model, *window.contentItem()).join(u"; "_s), QString());
        }
        model.setOpenAlbum(*model.albums()->front());
        QTRY_COMPARE(window.activeFocusItem(), user.item("closeSheetButton")); // the sheet has come in
        user.item("findCoverButton")->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&window, Qt::Key_Space);
        QTRY_COMPARE(window.activeFocusItem(), user.item("searchButton"));
        language.setChoice(u"system"_s); // both sheets stay, the second above the first
        QTRY_VERIFY(user.item("searchButton") && user.item("searchButton")->property("text") == u"Szukaj"_s);
        QTRY_COMPARE(window.activeFocusItem(), user.item("searchButton"));
        language.setChoice(u"en"_s);
        QTRY_VERIFY(user.item("searchButton") && user.item("searchButton")->property("text") == u"Search"_s);
        QTRY_VERIFY(user.item("sheetTitle"));
        QTest::qWait(300); // they have come in
        QCOMPARE(leftInPolish(model, *window.contentItem()).join(u"; "_s), QString());
        QTRY_COMPARE(window.activeFocusItem(), user.item("searchButton"));
        QTest::keyClick(&window, Qt::Key_Escape);
        QTRY_VERIFY(!user.item("searchButton") && model.openAlbum());
        QTest::keyClick(&window, Qt::Key_Escape);
        QTRY_VERIFY(!user.item("sheetTitle") && !model.openAlbum());
    }

private:
    /// Shown texts that have English words, or Polish letters without being the name of some music or file.
    static QStringList leftInPolish(const MarluneModel &model, const QQuickItem &item)
    {
        static const QRegularExpression polish(u"[ąćęłńśźżĄĆĘŁŃŚŹŻ]"_s);
        const auto isName = [&](const QString &text) {
            return text.contains(u"Przeprawy"_s) || text == u"Język"_s
                || std::ranges::any_of(model.tracks(), [&](const Track &track) {
                       return text.contains(track.album) || text.contains(track.artist) || text.contains(track.title);
                   });
        };
        QStringList found;
        for (const char *property : {"text", "toolTip", "placeholderText"}) {
            const QString text = item.property(property).toString();
            if (AppLocalizer::text(text) != text || (text.contains(polish) && !isName(text))) {
                found.append(text);
            }
        }
        for (const QQuickItem *child : item.childItems()) {
            found += child->isVisible() ? leftInPolish(model, *child) : QStringList();
        }
        return found;
    }

    static void open(NewUser &user, Section section)
    {
        user.click(user.itemWith("title", sectionTitle(section)));
        QTRY_COMPARE(user.program.model().section(), section);
        QTest::qWait(100); // the page is made, and its rows come in
        if (AppLocalizer::language() == u"en") {
            QCOMPARE(
                leftInPolish(user.program.model(), *user.program.window()->contentItem()).join(u"; "_s), QString());
        }
    }

    static void walkThroughThePages(NewUser &user, bool inEnglish)
    {
        MarluneModel &model = user.program.model();
        open(user, Section::Device);
        QCOMPARE(user.shownText("deviceConnection"), std::string(inEnglish ? "TEST FOLDER" : "FOLDER TESTOWY"));
        const std::size_t before = model.backups().size();
        user.item("deviceBackUpButton")->forceActiveFocus(Qt::TabFocusReason); // which brings it into sight
        QTest::qWait(100);
        user.clickNamed("deviceBackUpButton");
        QTRY_VERIFY(!model.busy() && model.backups().size() == before + 1);
        if (model.alert()) {
            user.clickNamed("alertOk");
        }
        open(user, Section::Playlists);
        user.clickNamed("savePlaylistButton");
        const fs::path playlist = user.device / "Playlists" / (inEnglish ? "My playlist.m3u8" : "Moja playlista.m3u8");
        QTRY_VERIFY(fs::exists(playlist));
        QTRY_COMPARE(user.item("fileList")->property("count").toInt(), 2); // one was there
        open(user, Section::Backups);
        QTRY_COMPARE(user.item("fileList")->property("count").toInt(), int(before) + 1);
        open(user, Section::Quality);
        open(user, Section::Themes);
        open(user, Section::Guide);
        QTest::keyClick(user.program.window(), Qt::Key_F, Qt::ControlModifier);
        for (const char letter : {'f', 'a', 't'}) {
            QTest::sendKeyEvent(
                QTest::Click, user.program.window(), Qt::Key(letter - 'a' + Qt::Key_A), QChar::fromLatin1(letter), {});
        }
        QTRY_VERIFY(user.shownText("findCount").starts_with(inEnglish ? "Match 1 of" : "Wynik 1 z"));
    }

    /// Three clicks on the drawn iPod lead there, and lead there again.
    static void findTheCarousel(NewUser &user)
    {
        const QQuickItem *const drawing = user.item("inspectorIPod");
        const QPoint middle = drawing->mapToScene({drawing->width() / 2, drawing->height() / 2}).toPoint();
        const auto clickThrice = [&] {
            QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 1); // it is a new beginning
            for (int click = 0; click < 3; ++click) {
                QTest::mouseClick(user.program.window(), Qt::LeftButton, Qt::NoModifier, middle);
            }
        };
        clickThrice();
        QTRY_VERIFY(user.carousel());
        const QPointer<QQuickWindow> window(user.carousel());
        const auto item = [&](const char *name) { return user.item(name, window->contentItem()); };
        const auto place = [&] { return item("flowStage")->property("index").toInt(); };
        QTRY_VERIFY(item("readAlbumsButton"));
        item("readAlbumsButton")->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(window, Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(item("flowStage") && item("flowStage")->property("count").toInt() == 2, 30'000);
        QCOMPARE(window->activeFocusItem(), item("flowStage"));
        QTest::keyClick(window, Qt::Key_Right);
        QCOMPARE(place(), 1);
        user.click(item("flowPrevious"));
        QCOMPARE(place(), 0);
        QTRY_VERIFY(!item("flowStage")->property("moving").toBool());
        const QQuickItem &stage = *item("flowStage");
        const QPointF centre = stage.mapToScene({stage.width() / 2, stage.height() / 2});
        const double side = stage.property("coverSide").toDouble();
        QTest::mouseClick(window, Qt::LeftButton, {}, (centre + QPointF(side * 0.7, 0)).toPoint()); // a side cover
        QCOMPARE(place(), 1);
        for (const auto &[ways, expected] : {std::pair(std::vector {10, 35, 60}, 0), std::pair(std::vector {-300}, 1),
                 std::pair(std::vector {300}, 0)}) {
            QTest::mousePress(window, Qt::LeftButton, {}, centre.toPoint());
            for (const int way : ways) {
                QTest::mouseMove(window, centre.toPoint() + QPoint(way, 0));
            }
            QTest::mouseRelease(window, Qt::LeftButton, {}, centre.toPoint() + QPoint(ways.back(), 0));
            QCOMPARE(place(), expected);
            QVERIFY(!item("sheetTitle"));
        }
        QTest::keyClick(window, Qt::Key_Right, Qt::AltModifier); // means nothing here
        QCOMPARE(place(), 0);
        QTRY_VERIFY(!stage.property("moving").toBool());
        const QPointF overlap = centre + QPointF(side * 0.47, 0); // of the middle cover and the one beside it
        QTest::mouseClick(window, Qt::LeftButton, {}, overlap.toPoint());
        QCOMPARE(place(), 0);
        QTRY_VERIFY(item("sheetTitle"));
        QTest::qWait(300); // the sheet has come in
        if (AppLocalizer::language() == u"en") {
            QCOMPARE(leftInPolish(user.program.model(), *window->contentItem()).join(u"; "_s), QString());
        }
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!item("sheetTitle"));
        const QString code = AppLocalizer::language();
        for (const QString &choice : {code == u"en" ? u"pl"_s : u"en"_s, code}) {
            Language::create(nullptr, nullptr)->setChoice(choice);
            QTRY_VERIFY(item("flowCount")
                && item("flowCount")->property("text") == (choice == u"en" ? u"Albums: 2"_s : u"2 albumów"_s));
            QTRY_VERIFY(item("flowStage") && item("flowStage")->hasActiveFocus());
        }
        window->resize(820, 660);
        window->showMinimized();
        clickThrice(); // it is there already
        QTRY_VERIFY(!window->windowStates().testFlag(Qt::WindowMinimized) && window->width() == 820);
        QCOMPARE(user.program.window()->findChildren<QQuickWindow *>(u"coverFlowWindow"_s).size(), 1);
        QCOMPARE(place(), 0);
        QTest::keyClick(window, Qt::Key_F11);
        QTRY_COMPARE(window->visibility(), QWindow::FullScreen);
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(window && window->visibility() != QWindow::FullScreen);
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!window && !user.program.model().showCoverFlow());
        clickThrice();
        QTRY_VERIFY(user.carousel());
        user.program.model().setLibraryOnDevice(false);
        QTest::keyClick(user.carousel(), Qt::Key_Escape);
        QTRY_VERIFY(!user.carousel());
        user.program.window()->requestActivate(); // which a window manager does
    }

    /// The program ends with the main window, also where the carousel is open.
    static void endTheProgram(NewUser &user)
    {
        user.program.model().revealCoverFlow();
        QTRY_VERIFY(user.carousel());
        QTimer::singleShot(0, user.program.window(), &QWindow::close);
        QTimer patience;
        patience.callOnTimeout([] { QCoreApplication::exit(1); });
        patience.start(10'000);
        QCOMPARE(QGuiApplication::exec(), 0);
        QTRY_VERIFY(!user.carousel());
    }

    static void listenToTheOnlyAlbum(NewUser &user)
    {
        const Playback &playback = user.program.model().playback();
        QQuickItem *const tile = user.tile("Soundings");
        QTest::mouseMove(user.program.window(), tile->mapToScene({20, 20}).toPoint());
        QTRY_VERIFY(user.item("playButton", tile));
        user.click(user.item("playButton", tile));
        QTRY_VERIFY(playback.playing());
        user.clickNamed("stopButton");
        QTRY_VERIFY(!playback.current() && !user.item("stopButton"));
    }
};

QTEST_MAIN(WindowTest)

#include "WindowTest.moc"
