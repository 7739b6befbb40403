// The rows of the track table under real changes of a real model, watched by Qt's own tester.
#include "ui/library/TrackListModel.h"
#include "support/ModelDesk.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <random>

namespace {

struct Table {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    TrackListModel rows {*model};
    QAbstractItemModelTester tester {&rows, QAbstractItemModelTester::FailureReportingMode::QtTest};

    explicit Table() { model->setViewMode(viewModeText(ViewMode::Tracks)); }

    /// Writes tracks of these titles, each an album of its own.
    void write(const std::vector<std::string> &titles, int bits = 16) const
    {
        for (const std::string &title : titles) {
            desk.folder.write("music/" + title + "/1.flac",
                flacWith({"ARTIST=Band", "ALBUM=" + title, "TITLE=" + title, "TRACKNUMBER=7"}, title, bits));
        }
    }
    void import() { ModelDesk::import(*model, desk.folder / "music"); }
    [[nodiscard]] QVariant value(int row, int role) const { return rows.data(rows.index(row), role); }
    [[nodiscard]] QString titles() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            result.append(value(row, TrackListModel::TitleRole).toString());
        }
        return result.join(u' ');
    }
    /// The titles of the selected rows.
    [[nodiscard]] QString marked() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            if (value(row, TrackListModel::MarkedRole).toBool()) {
                result.append(value(row, TrackListModel::TitleRole).toString());
            }
        }
        return result.join(u' ');
    }
    void forget(const QString &title)
    {
        for (const auto &album : *model->albums()) {
            if (album->title == title) {
                model->forget(Album(*album));
                return;
            }
        }
    }
};

} // namespace

class TrackListModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatTheFilesSay()
    {
        Table table;
        table.write({"A"});
        table.write({"B"}, 24);
        table.desk.folder.write("music/C/1.flac",
            flacWith({"ARTIST=Band", "ALBUM=C", "TITLE=C\nx\xE2\x80\xAEy<b>" + std::string(10'000, 'z'),
                "TRACKNUMBER=2147483648"}));
        table.import();
        QTRY_COMPARE(table.rows.rowCount(), 3);
        const QStringList expected {u"07 "_s, u"A"_s, u"Band"_s, u"0:01"_s, u"FLAC"_s, u"16-bit / 44.1 kHz"_s};
        for (int i = 0; i < expected.size(); ++i) {
            QCOMPARE(table.value(0, TrackListModel::NumberRole + i).toString(), expected[i]);
        }
        QVERIFY(!table.value(0, TrackListModel::HighResolutionRole).toBool());
        QVERIFY(table.value(1, TrackListModel::HighResolutionRole).toBool());
        const QString title = table.value(2, TrackListModel::TitleRole).toString();
        QVERIFY(title.size() < 1000 && title.startsWith(u"C\uFFFDx\uFFFDy<b>"_s));
        QVERIFY(QStringList({u"2147483648 "_s, QString()}).contains(table.value(2, TrackListModel::NumberRole)));
        for (const int row : {-1, 3}) {
            table.rows.play(row);
            table.rows.toggle(row);
            table.rows.activate(row);
            table.rows.drag(row, {}, {}, {});
        }
        QVERIFY(!table.model->openAlbum() && table.model->queued().isEmpty());
        table.rows.activate(1);
        QCOMPARE(table.model->openAlbum()->title, u"B"_s);
    }

    void neverShowsAnotherTrack()
    {
        Table table;
        table.write({"A", "B", "C"});
        table.import();
        QTRY_COMPARE(table.titles(), u"A B C"_s);
        table.forget(u"A"_s); // the rows follow a turn later: until then they are of places that are others' now
        QCOMPARE(table.titles(), u"  "_s);
        table.rows.toggle(1);
        table.rows.play(2);
        QVERIFY(table.model->queued().isEmpty() && !table.model->playback().current());
        QTRY_COMPARE(table.titles(), u"B C"_s);
    }

    void whatIsStillThereStaysSelected()
    {
        Table table;
        table.write({"B", "D", "F", "H"});
        table.import();
        QTRY_COMPARE(table.titles(), u"B D F H"_s);
        const QSignalSpy places(&table.rows, &MusicListModel::placed);
        table.rows.click(1, Qt::NoModifier);
        table.rows.click(3, Qt::ControlModifier);
        table.write({"A", "E"});
        table.import();
        QTRY_COMPARE(table.titles(), u"A B D E F H"_s);
        QCOMPARE(table.marked(), u"D H"_s);
        table.forget(u"D"_s);
        QTRY_COMPARE(table.titles(), u"A B E F H"_s);
        QCOMPARE(places.count(), 0);
        QCOMPARE(table.marked(), u"H"_s);
        QCOMPARE(table.rows.currentRow(), 4);

        table.model->setSortMode(u"Rok"_s); // by title, upside down for the one with a year
        table.write({"Z"});
        table.import();
        QTRY_VERIFY(table.titles().contains(u'Z'));
        QCOMPARE(table.marked(), u"H"_s);
        const qsizetype placedBefore = places.count();
        table.model->setSearch(u"Band"_s); // which all of them have
        QTest::qWait(1);
        QCOMPARE(places.count(), placedBefore);
        table.model->setSearch(u"d A"_s);
        QTRY_COMPARE(table.titles(), u"A"_s);
        QCOMPARE(places.count(), placedBefore + 1);
        QCOMPARE(table.rows.selectedCount(), 0);
        QCOMPARE(table.rows.currentRow(), 0);
    }

    void aDeviceThatIsReadAgainKeepsItsPlace()
    {
        Table table;
        table.model->select(table.desk.makeDevice("IPOD", true));
        for (const char *title : {"A", "B", "C", "D"}) {
            table.desk.folder.write(std::string("IPOD/Music/") + title + "/1.flac",
                flacWith({"ARTIST=Band", "TITLE=" + std::string(title)}));
        }
        ModelDesk::run(*table.model, &MarluneModel::scanDeviceMusic);
        QTRY_COMPARE(table.titles(), u"A B C D"_s);
        table.rows.click(2, Qt::NoModifier);
        table.rows.setView(1.5, 2);
        table.rows.toggle(0);
        QVERIFY(table.value(0, TrackListModel::ChosenRole).toBool() && table.model->queued().isEmpty());
        QSignalSpy placed(&table.rows, &TrackListModel::placed);
        ModelDesk::hold(*table.model, [&table] {
            table.model->scanDeviceMusic();
            QTRY_COMPARE(table.rows.rowCount(), 0);
        });
        QTRY_COMPARE(table.titles(), u"A B C D"_s);
        QCOMPARE(table.marked(), u"C"_s);
        QCOMPARE(table.rows.currentRow(), 2);
        QCOMPARE(placed.last().at(0).toDouble(), 1.5);
    }

    void actionsAreAboutAllThatIsSelected()
    {
        Table table;
        table.write({"Alfa", "Beta", "Łąka", "Las"});
        table.import();
        QTRY_COMPARE(table.rows.rowCount(), 4);
        table.rows.click(0, Qt::NoModifier);
        table.rows.click(1, Qt::ShiftModifier);
        table.rows.press(1, Qt::NoModifier); // may begin a drag: both stay selected
        QCOMPARE(table.rows.selectedCount(), 2);
        QSignalSpy changes(&table.rows, &QAbstractItemModel::dataChanged);
        table.rows.toggle(0);
        QVERIFY(!table.rows.selectedAreChosen(0));
        table.rows.toggleSelected(1);
        QCOMPARE(table.model->queued().size(), 2);
        QVERIFY(table.rows.selectedAreChosen(1) && !table.rows.selectedAreChosen(2));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(changes.at(0).at(2).value<QList<int>>(), QList<int> {TrackListModel::ChosenRole});
        table.rows.toggleSelected(0);
        table.rows.toggleSelected(3); // another one
        QCOMPARE(table.model->queued().size(), 1);
        QVERIFY(!table.rows.type(u" "_s, 0) && !table.rows.type(u"l"_s, Qt::ControlModifier));
        QVERIFY(table.rows.type(u"l"_s, 0));
        QCOMPARE(table.rows.currentRow(), 2);
        QVERIFY(table.rows.type(u"l"_s, Qt::ShiftModifier) && table.rows.type(u"ą"_s, 0));
        QVERIFY(table.rows.typing());
        table.rows.selectAll();
        QVERIFY(table.rows.clearSelection() && !table.rows.clearSelection());
    }

    void restsWhileItIsHidden()
    {
        Table table;
        table.model->setViewMode(viewModeText(ViewMode::Albums));
        table.write({"A"});
        table.import();
        QTest::qWait(1);
        QCOMPARE(table.rows.rowCount(), 0);
        table.model->setViewMode(viewModeText(ViewMode::Tracks));
        QCOMPARE(table.rows.rowCount(), 1);
        table.model->setSection(Section::Themes);
        table.model->setSearch(u"zzz"_s);
        QTest::qWait(1);
        QCOMPARE(table.rows.rowCount(), 1);
        table.model->setSection(Section::Music);
        QCOMPARE(table.rows.rowCount(), 0);
    }

    /// Against a plain list of what is there: whatever changes, rows and selection are those of the model.
    void followsWhateverChanges()
    {
        Table table;
        std::mt19937 random(3); // the same changes in each run
        std::vector<std::string> names;
        for (char name = 'a'; name < 'q'; ++name) {
            names.emplace_back(1, name);
        }
        table.write(names);
        table.import();
        QTRY_COMPARE(table.rows.rowCount(), 16);
        for (int round = 0; round < 60; ++round) {
            const int kind = int(random() % 5);
            const QString name = QString::fromStdString(names[random() % names.size()]);
            if (kind == 0) {
                table.forget(name);
            } else if (kind == 1) {
                table.import();
            } else if (kind == 2) {
                table.model->setSortMode(sortModeText(allSortModes[random() % allSortModes.size()]));
            } else if (kind == 3) {
                table.model->setSearch(random() % 2 ? QString() : name);
            } else if (table.rows.rowCount() > 0) {
                table.rows.click(int(random() % unsigned(table.rows.rowCount())), Qt::ControlModifier);
            }
            QSet<QString> before;
            for (const QString &title : table.marked().split(u' ', Qt::SkipEmptyParts)) {
                before.insert(title);
            }
            QTest::qWait(2);
            QStringList expected;
            QStringList kept;
            for (const std::uint32_t place : *table.model->filteredTracks()) {
                const QString title = table.model->activeTracks()[place].title;
                expected.append(title);
                kept += before.contains(title) ? QStringList {title} : QStringList();
            }
            QCOMPARE(table.titles(), expected.join(u' '));
            if (kind != 0 && kind != 1) { // where no row was blank when it was asked
                QCOMPARE(table.marked(), kept.join(u' '));
            }
            QCOMPARE(table.rows.selectedCount(), int(table.marked().split(u' ', Qt::SkipEmptyParts).size()));
        }
    }
};

QTEST_MAIN(TrackListModelTest)
#include "TrackListModelTest.moc"
