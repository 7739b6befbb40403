// The rows of the album grid under real changes of a real model, watched by Qt's own tester.
#include "ui/library/AlbumListModel.h"
#include "support/ModelDesk.h"
#include "ui/pictures/CoverProvider.h"

#include <QAbstractItemModelTester>
#include <QImage>
#include <QSignalSpy>

namespace {

struct Grid {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    std::shared_ptr<CoverStore> covers = std::make_shared<CoverStore>();
    AlbumListModel rows {*model, covers};
    QAbstractItemModelTester tester {&rows, QAbstractItemModelTester::FailureReportingMode::QtTest};

    /// Writes albums of the artist, each with two tracks in a folder of its own.
    void write(const std::string &artist, const std::vector<std::string> &albums, const std::string &cover = {},
        int bits = 16) const
    {
        for (const std::string &album : albums) {
            for (const char *number : {"1", "2"}) {
                const std::string place = "music/" + artist + "/" + album + "/" + number + ".flac";
                desk.folder.write(place, flacWith({"ARTIST=" + artist, "ALBUM=" + album}, number, bits, cover));
            }
        }
    }
    void import() { ModelDesk::import(*model, desk.folder / "music"); }
    [[nodiscard]] QString titles() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            result.append(value(row, AlbumListModel::TitleRole).toString());
        }
        return result.join(u' ');
    }
    [[nodiscard]] QVariant value(int row, int role) const { return rows.data(rows.index(row), role); }
};

} // namespace

class AlbumListModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatTheModelHolds()
    {
        Grid grid;
        grid.write("Beta", {"Second"}, "cover");
        grid.write("Beta", {"Deep"}, {}, 24);
        grid.write("Alpha", {"First/CD1", "First/CD2"});
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 3);
        QCOMPARE(grid.value(0, AlbumListModel::DiscsRole).toString(), u"2 CD · jeden album"_s);
        QVERIFY(grid.value(1, AlbumListModel::HighResolutionRole).toBool());
        QVERIFY(!grid.value(2, AlbumListModel::HighResolutionRole).toBool());
        QVERIFY(grid.covers->find(grid.value(2, AlbumListModel::CoverRole).toString()));

        grid.rows.forget(2); // and its cover is let go
        QTRY_COMPARE(grid.covers->size(), 0);
        for (const QColor color : {Qt::red, Qt::blue}) {
            const QVariant before = grid.value(1, AlbumListModel::CoverRole);
            const fs::path picture = grid.desk.folder / "picture.png";
            QImage chosen(20, 20, QImage::Format_RGB32);
            chosen.fill(color);
            QVERIFY(chosen.save(QString::fromStdString(picture.string())));
            grid.model->chooseArtwork(*grid.model->albums()->at(1), false);
            grid.desk.panels.answer({picture});
            QTRY_VERIFY(grid.value(1, AlbumListModel::CoverRole) != before);
            ModelDesk::waitForJobs(*grid.model);
        }
    }

    void keepsItsRowsWhenAlbumsComeAndGo()
    {
        Grid grid;
        grid.write("Artist", {"B", "D", "F"});
        grid.import();
        QTRY_COMPARE(grid.titles(), u"B D F"_s);
        const QSignalSpy places(&grid.rows, &MusicListModel::placed);
        const QPersistentModelIndex second = grid.rows.index(1);
        grid.rows.walk(0, Qt::NoModifier);
        grid.rows.walk(1, Qt::ShiftModifier);
        const auto marked = [&] {
            QString titles;
            for (const int row : grid.rows.selection().rows()) {
                titles += grid.value(row, AlbumListModel::TitleRole).toString();
            }
            return titles + u' ' + grid.value(grid.rows.currentRow(), AlbumListModel::TitleRole).toString();
        };
        QCOMPARE(marked(), u"BD D"_s);
        grid.write("Artist", {"A", "C", "G"});
        grid.import();
        QTRY_COMPARE(grid.titles(), u"A B C D F G"_s);
        QCOMPARE(second.row(), 3);

        grid.desk.folder.write("music/Artist/D/3.flac", flacWith({"ARTIST=Artist", "ALBUM=D"}));
        QSignalSpy changes(&grid.rows, &QAbstractItemModel::dataChanged);
        grid.import(); // a known album gets a third track
        QTRY_VERIFY(grid.value(3, AlbumListModel::CountAndSizeRole).toString().startsWith(u"3 / "_s));
        QCOMPARE(std::ranges::count_if(
                     changes, [](const auto &change) { return change.at(2).template value<QList<int>>().isEmpty(); }),
            1);
        grid.rows.forget(0);
        QTRY_COMPARE(grid.titles(), u"B C D F G"_s);
        QCOMPARE(second.row(), 2);
        QCOMPARE(places.count(), 0); // what is in sight stays there
        QCOMPARE(marked(), u"BD D"_s);

        grid.rows.setTopRow(2.5);
        QString landmarks;
        for (const SortMode mode : allSortModes) {
            grid.model->setSortMode(sortModeText(mode));
            ModelDesk::waitForJobs(*grid.model);
            landmarks += grid.rows.landmark(0).section(u' ', -1) + u' ';
            QCOMPARE(marked().section(u' ', 1), u"D"_s);
        }
        QCOMPARE(landmarks, u"A B — B "_s);
        QVERIFY(places.count() > 0 && places.at(0).at(0).toDouble() == 0);
        QVERIFY(grid.titles().startsWith(u'D'));
        QCOMPARE(marked(), u"DB D"_s);
        grid.model->setSearch(u"x"_s);
        grid.model->setHiResOnly(true);
        QTRY_COMPARE(grid.rows.rowCount(), 0);
    }

    void aNewCoverChangesItsRowAloneAndAHiddenListLater()
    {
        Grid grid;
        const std::string picture = fileBytes(dataFile("images/plain.png"));
        grid.write("Artist", {"A", "B", "C", "D", "E"}, picture);
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 5);
        QSignalSpy changes(&grid.rows, &QAbstractItemModel::dataChanged);
        const auto albums = grid.model->albums();
        const QString before = grid.value(1, AlbumListModel::CoverRole).toString();
        grid.model->chooseArtwork(*albums->at(1), true);
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(changes.at(0).at(0).toModelIndex().row(), 1);
        QCOMPARE(grid.model->albums()->at(0), albums->at(0)); // nothing is grouped anew
        const QString after = grid.value(1, AlbumListModel::CoverRole).toString();
        QVERIFY(after != before);
        QCOMPARE(grid.covers->find(after), grid.model->albums()->at(1)->artworkBytes());

        bool changedMeanwhile = false;
        connect(&grid.rows, &QAbstractItemModel::dataChanged, &grid.rows,
            [&] { changedMeanwhile = changedMeanwhile || grid.model->busy(); });
        ModelDesk::waitForJobs(*grid.model);
        grid.model->setSection(Section::Themes);
        grid.model->repairAvailableCovers();
        ModelDesk::waitForJobs(*grid.model);
        QCOMPARE(changes.count(), 1);
        grid.model->setSection(Section::Music);
        QTRY_COMPARE(changes.count(), 5);
        QVERIFY(!changedMeanwhile);
    }

    void selectionTouchesNothingElse()
    {
        Grid grid;
        grid.write("Artist", {"A", "B", "C", "D"});
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 4);
        QSignalSpy changes(&grid.rows, &QAbstractItemModel::dataChanged);
        for (const int row : {1, 2, -1, 4}) {
            grid.rows.toggle(row);
        }
        QTRY_COMPARE(changes.count(), 1); // for all of them
        QCOMPARE(changes.at(0).at(2).value<QList<int>>(), QList<int> {AlbumListModel::ChosenRole});
        QVERIFY(grid.value(2, AlbumListModel::ChosenRole).toBool());
        grid.model->clearQueue();
        QTRY_VERIFY(!grid.value(1, AlbumListModel::ChosenRole).toBool());
    }

    void itsCoversComeInTheSizeAskedFor()
    {
        const QByteArray cover = QByteArray::fromStdString(fileBytes(dataFile("images/plain.png")));
        const auto covers = std::make_shared<CoverStore>();
        CoverProvider provider(covers);
        for (const int side : {60, 20, 60}) {
            const std::unique_ptr<QQuickImageResponse> response(
                provider.requestImageResponse(covers->nameOf(cover) + u"/0"_s, {side, side}));
            QVERIFY(QSignalSpy(response.get(), &QQuickImageResponse::finished).wait());
            const std::unique_ptr<QQuickTextureFactory> drawn(response->textureFactory());
            QCOMPARE(drawn->textureSize(), QSize(side, side));
        }
    }
};

QTEST_MAIN(AlbumListModelTest)
#include "AlbumListModelTest.moc"
