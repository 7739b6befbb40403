// Each view of the library and each sheet as a user goes through them, by mouse and keyboard: what is selected, where
// a list stands and what is open stays so, and what changes behind a sheet is seen in it.
#include "NewUser.h"

#include "support/Archives.h"

namespace {

/// The list of one view, and what its model says of it.
struct View {
    const char *mode;
    const char *name;

    [[nodiscard]] QQuickItem *of(const NewUser &user) const { return user.item(name); }
    [[nodiscard]] int number(const NewUser &user, const char *property) const
    {
        const QObject *rows = of(user) ? of(user)->property("model").value<QObject *>() : nullptr;
        return rows ? rows->property(property).toInt() : -1;
    }
    void open(NewUser &user) const
    {
        user.program.model().setViewMode(QString::fromUtf8(mode));
        QTRY_VERIFY(of(user) && number(user, "count") > 0);
    }
    [[nodiscard]] QQuickItem *row(const NewUser &user, int index) const
    {
        QQuickItem *item = nullptr; // stays so for a row that is scrolled out of sight
        QMetaObject::invokeMethod(of(user), "itemAtIndex", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, index));
        return item;
    }
};

const View albums {"Albumy", "albumGrid"};
const View tracks {"Utwory", "trackList"};
const View folders {"Foldery", "folderTree"};

} // namespace

class ViewsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(fs::exists(sample / "Music"));
        MarluneApp::prepareApplication();
    }

    void eachViewSelectsQueuesAndKeepsItsPlace()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music");
        for (const View &view : {albums, tracks, folders}) {
            user.clickNamed("clearQueueButton");
            view.open(user);
            user.item("searchField")->forceActiveFocus(Qt::ShortcutFocusReason);
            user.press(Qt::Key_Down); // from the search into the list
            QTRY_VERIFY(view.of(user)->hasActiveFocus() || view.row(user, 0)->hasActiveFocus());
            if (view.name == folders.name) {
                user.type(u"*"_s); // all folders open
                QTRY_VERIFY(view.number(user, "count") > int(model.tracks().size()));
            }
            user.press(Qt::Key_End);
            QTRY_COMPARE(view.number(user, "selectedCount"), 1);
            user.press(Qt::Key_Up, Qt::ShiftModifier);
            QVERIFY(view.number(user, "selectedCount") > 1);
            user.press(Qt::Key_Space);
            QTRY_VERIFY(!model.queued().isEmpty());
            const qsizetype queued = model.queued().size();
            const int selected = view.number(user, "selectedCount");
            const int current = view.number(user, "currentRow");
            user.settle(); // the list has gone to what is current
            const double place = view.of(user)->property("contentY").toDouble();
            QVERIFY2(place > 0, view.mode);

            const std::array<std::function<void()>, 4> journeys = {
                [&] { // another page
                    model.setSection(Section::Guide);
                    user.settle();
                    model.setSection(Section::Music);
                },
                [&] { // another view
                    model.setViewMode(view.name == albums.name ? u"Utwory"_s : u"Albumy"_s);
                    user.settle();
                    view.open(user);
                },
                [&] { // a sheet
                    model.setOpenAlbum(*model.albums()->front());
                    QTRY_VERIFY(user.item("sheetTitle"));
                    user.press(Qt::Key_Escape);
                    QTRY_VERIFY(!user.item("sheetTitle"));
                },
                [&] { // the same files once more
                    model.importURLs({sample / "Music"}, false, false);
                    QTRY_VERIFY_WITH_TIMEOUT(!model.busy(), 30'000);
                },
            };
            for (std::size_t i = 0; i < journeys.size(); ++i) {
                journeys[i]();
                user.settle();
                QVERIFY2(qAbs(view.of(user)->property("contentY").toDouble() - place) < 1, view.mode);
                QCOMPARE(view.number(user, "selectedCount"), selected);
                QCOMPARE(view.number(user, "currentRow"), current);
                QCOMPARE(model.queued().size(), queued);
            }
            const int listed = view.number(user, "count");
            user.searchFor("soundings");
            QTRY_VERIFY(view.number(user, "count") < listed / 2);
            user.searchFor("no such name");
            QTRY_VERIFY(user.item("emptyState"));
            user.press(Qt::Key_Escape);
            QTRY_VERIFY(model.search().isEmpty() && view.number(user, "count") == listed);
        }
        tracks.open(user);
        user.click(tracks.row(user, 0));
        user.type(u"perih"_s);
        QTRY_COMPARE(
            tracks.row(user, tracks.number(user, "currentRow"))->property("title").toString().left(5), u"Perih"_s);
    }

    void theDevicesSideKeepsTheFilters()
    {
        NewUser user;
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music/Low Tide Almanac");
        model.setFormatFilter(u"FLAC"_s);
        const QQuickItem &source = *user.item("sourcePicker");
        const auto pick = [&](double part) {
            QTest::mouseClick(user.program.window(), Qt::LeftButton, Qt::NoModifier,
                source.mapToScene({source.width() * part, source.height() / 2}).toPoint());
        };
        pick(0.75);
        QTRY_VERIFY(model.libraryOnDevice() && user.item("emptyState"));
        user.clickNamed("readDeviceButton");
        QTRY_VERIFY_WITH_TIMEOUT(!model.busy() && !model.deviceTracks().empty(), 30'000);
        QCOMPARE(model.formatFilter(), u"FLAC"_s);
        model.setFormatFilter(u"Wszystko"_s);
        QTRY_VERIFY(user.count() > 0);
        QCOMPARE(user.itemWith("text", u"Do playlisty"_s) != nullptr, true);
        for (const View &view : {tracks, folders, albums}) {
            view.open(user);
        }
        // The device goes while a sheet shows an album of it.
        model.setOpenAlbum(*model.albums()->front());
        QTRY_VERIFY(user.item("sheetTitle"));
        model.volumeUnmounted(user.device);
        QTRY_VERIFY(user.item("albumGone"));
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!user.item("albumGone") && !model.openAlbum());
        pick(0.25);
        QTRY_VERIFY(!model.libraryOnDevice() && user.tile("Soundings"));
    }

    void theSheetsOpenFromEverywhereAndFollowWhatChanges()
    {
        CannedServer server {{}};
        server.answering = foundCover;
        NewUser user({u"pl"_s}, [] { return std::vector<Device> {}; }, coverServices(server));
        MarluneModel &model = user.program.model();
        user.begin(sample / "Music/Low Tide Almanac");
        const auto openedAndClosed = [&] {
            QTRY_COMPARE(user.shownText("sheetTitle"), std::string("Soundings"));
            QTest::qWait(250); // it has come in
            user.press(Qt::Key_Escape);
            QTRY_VERIFY(!user.item("sheetTitle") && !model.openAlbum());
        };
        user.click(user.tile("Soundings"));
        openedAndClosed();
        for (const View &view : {albums, tracks, folders}) {
            view.open(user);
            user.item("searchField")->forceActiveFocus(Qt::ShortcutFocusReason);
            user.press(Qt::Key_Down);
            if (view.name == folders.name) {
                user.type(u"*"_s);
            }
            user.press(Qt::Key_End);
            user.settle();
            user.press(Qt::Key_Return);
            openedAndClosed();
        }

        // The order page's finding leads to the search, and what is found there becomes the cover.
        model.setSection(Section::Quality);
        QTRY_VERIFY(user.item("lookUpCoverButton"));
        user.item("lookUpCoverButton")->forceActiveFocus(Qt::TabFocusReason);
        user.press(Qt::Key_Space);
        QTRY_VERIFY(user.item("searchButton"));
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!user.item("searchButton"));
        model.importURLs({sample / "Music/Radio Szuflada"}, false, false); // it has no tags
        QTRY_VERIFY_WITH_TIMEOUT(user.item("openAlbumButton"), 20'000);
        user.item("openAlbumButton")->forceActiveFocus(Qt::TabFocusReason);
        user.press(Qt::Key_Space);
        QTRY_VERIFY(user.item("sheetTitle"));
        QTest::qWait(250);
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!user.item("sheetTitle") && !model.openAlbum());
        model.setSection(Section::Music);
        albums.open(user);
        QTRY_VERIFY(user.tile("Soundings"));
        const QString before = user.tile("Soundings")->property("cover").toString();
        user.click(user.tile("Soundings"));
        QTRY_VERIFY(user.item("sheetTitle"));
        QTest::qWait(250);
        user.clickNamed("coverButton");
        QTRY_VERIFY(user.item("wholeCover"));
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!user.item("wholeCover") && user.item("sheetTitle"));
        user.clickNamed("findCoverButton");
        QTRY_VERIFY(user.item("searchButton"));
        QTest::qWait(250);
        if (!user.item("downloadButton")) {
            user.clickNamed("searchButton");
        }
        QTRY_VERIFY(user.item("downloadButton"));
        user.clickNamed("downloadButton");
        QTRY_VERIFY_WITH_TIMEOUT(
            !model.busy() && user.tile("Soundings")->property("cover").toString() != before, 20'000);
        QTRY_VERIFY(user.item("coverSourceButton") && !user.item("searchButton"));

        // What is read again behind the sheet stays in it, what goes is gone.
        model.importURLs({sample / "Music/Low Tide Almanac"}, false, false);
        QTRY_VERIFY_WITH_TIMEOUT(!model.busy(), 20'000);
        QCOMPARE(user.shownText("sheetTitle"), std::string("Soundings"));
        model.forget(*model.openAlbum());
        QTRY_VERIFY(user.item("albumGone"));
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!user.item("albumGone"));

        model.setSection(Section::Themes);
        QTRY_VERIFY(user.item("themeButton"));
        user.item("themeGrid")->property("currentItem").value<QQuickItem *>()->forceActiveFocus(Qt::TabFocusReason);
        user.press(Qt::Key_Right);
        user.press(Qt::Key_Return);
        QTRY_VERIFY(model.openTheme() && user.item("ownPictureButton"));
        QCOMPARE(model.openTheme()->id(), model.themes()[1].id());
        QTest::qWait(250);
        user.press(Qt::Key_Escape);
        QTRY_VERIFY(!model.openTheme() && !user.item("ownPictureButton"));
        const qsizetype installed = qsizetype(model.themes().size());
        user.drop({QUrl::fromLocalFile(QString::fromStdString(archive("plain.zip").string()))}, {600, 600});
        QTRY_VERIFY_WITH_TIMEOUT(!model.busy() && model.alert(), 20'000);
        QTRY_COMPARE(user.item("themeGrid")->property("count").toInt(), int(installed) + 1);
    }
};

QTEST_MAIN(ViewsTest)
#include "ViewsTest.moc"
