// The rows of the album grid under real changes of a real model, watched by Qt's own tester.
#include "ui/AlbumListModel.h"
#include "support/ModelDesk.h"

#include <QAbstractItemModelTester>
#include <QBuffer>
#include <QSignalSpy>

namespace {

std::string png(Qt::GlobalColor colour)
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

struct Grid {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    std::shared_ptr<CoverStore> covers = std::make_shared<CoverStore>();
    AlbumListModel rows {*model, covers};
    QAbstractItemModelTester tester {&rows, QAbstractItemModelTester::FailureReportingMode::QtTest};

    /// Writes an album of as many tracks as given, in a folder of its own.
    void write(const std::string &artist, const std::string &album, int tracks = 2, const std::string &cover = {},
        int bits = 16) const
    {
        for (int i = 1; i <= tracks; ++i) {
            const std::string number = std::to_string(i);
            std::string bytes = "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(44100, std::uint64_t(bits), 44100));
            if (!cover.empty()) {
                bytes += FlacBytes::block(6, FlacBytes::picture(3, cover));
            }
            bytes += FlacBytes::block(4,
                FlacBytes::comments({"ARTIST=" + artist, "ALBUM=" + album, "TITLE=" + number, "TRACKNUMBER=" + number}),
                true);
            desk.folder.write(std::filesystem::path("music") / artist / album / (number + ".flac"), bytes);
        }
    }
    void import(const std::string &folder = {})
    {
        model->importURLs({desk.folder / ("music/" + folder)}, false, false);
        ModelDesk::waitForJobs(*model);
    }
    [[nodiscard]] QStringList titles() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            result.append(value(row, AlbumListModel::TitleRole).toString());
        }
        return result;
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
        QCOMPARE(grid.rows.rowCount(), 0);
        grid.write("Beta", "Second", 2, png(Qt::red));
        grid.write("Beta", "Deep", 1, {}, 24);
        grid.write("Alpha", "First/CD1", 1);
        grid.write("Alpha", "First/CD2", 1);
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 3);
        QCOMPARE(grid.value(0, AlbumListModel::ArtistRole).toString(), QStringLiteral("Alpha"));
        QCOMPARE(grid.value(0, AlbumListModel::DiscsRole).toString(), QStringLiteral("2 CD · jeden album"));
        QCOMPARE(grid.value(1, AlbumListModel::TitleRole).toString(), QStringLiteral("Deep"));
        QVERIFY(grid.value(1, AlbumListModel::HighResolutionRole).toBool());
        QVERIFY(grid.value(1, AlbumListModel::CoverRole).toString().isEmpty());
        QVERIFY(!grid.value(2, AlbumListModel::HighResolutionRole).toBool());
        QVERIFY(grid.value(2, AlbumListModel::CountAndSizeRole).toString().startsWith(QStringLiteral("2 / ")));
        QCOMPARE(grid.value(2, AlbumListModel::FormatRole).toString(), QStringLiteral("FLAC"));
        QVERIFY(grid.value(2, AlbumListModel::DiscsRole).toString().isEmpty());
        QVERIFY(grid.covers->find(grid.value(2, AlbumListModel::CoverRole).toString()));
        QVERIFY(!grid.rows.data(grid.rows.index(3), AlbumListModel::TitleRole).isValid());
    }

    void keepsItsRowsWhenAlbumsComeAndGo()
    {
        Grid grid;
        for (const char *album : {"B", "D", "F"}) {
            grid.write("Artist", album);
        }
        grid.import();
        QTRY_COMPARE(grid.titles(), QStringList({QStringLiteral("B"), QStringLiteral("D"), QStringLiteral("F")}));
        const QSignalSpy resets(&grid.rows, &QAbstractItemModel::modelReset);
        const QPersistentModelIndex second = grid.rows.index(1);
        for (const char *album : {"A", "C", "G"}) {
            grid.write("Artist", album);
        }
        grid.import();
        QTRY_COMPARE(grid.titles().join(QString()), QStringLiteral("ABCDFG"));
        QCOMPARE(second.row(), 3);
        grid.rows.forget(0);
        QTRY_COMPARE(grid.titles().join(QString()), QStringLiteral("BCDFG"));
        QCOMPARE(second.row(), 2);

        grid.write("Artist", "D", 3); // a known album gets a third track
        QSignalSpy changes(&grid.rows, &QAbstractItemModel::dataChanged);
        grid.import("Artist/D");
        QTRY_VERIFY(grid.value(2, AlbumListModel::CountAndSizeRole).toString().startsWith(QStringLiteral("3 / ")));
        QCOMPARE(changes.count(), 1);
        QCOMPARE(second.row(), 2);
        grid.model->setSearch(QStringLiteral("artist"));
        QTRY_COMPARE(grid.rows.rowCount(), 5);
        QCOMPARE(resets.count(), 0);

        grid.model->setSortMode(QStringLiteral("Rozmiar"));
        QTRY_COMPARE(resets.count(), 1);
        QCOMPARE(grid.titles().constFirst(), QStringLiteral("D"));
    }

    void selectionTouchesNothingElse()
    {
        Grid grid;
        for (const char *album : {"A", "B", "C", "D"}) {
            grid.write("Artist", album);
        }
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 4);
        QSignalSpy changes(&grid.rows, &QAbstractItemModel::dataChanged);
        const QSignalSpy resets(&grid.rows, &QAbstractItemModel::modelReset);
        grid.rows.toggle(1);
        grid.rows.toggle(2);
        grid.rows.toggle(-1);
        grid.rows.toggle(4);
        QTRY_COMPARE(changes.count(), 1); // both neighbours in one range
        QCOMPARE(changes.at(0).at(0).toModelIndex().row(), 1);
        QCOMPARE(changes.at(0).at(1).toModelIndex().row(), 2);
        QCOMPARE(changes.at(0).at(2).value<QList<int>>(), QList<int> {AlbumListModel::SelectedRole});
        QVERIFY(grid.value(2, AlbumListModel::SelectedRole).toBool());
        QVERIFY(!grid.value(3, AlbumListModel::SelectedRole).toBool());
        grid.model->clearQueue();
        QTRY_VERIFY(!grid.value(1, AlbumListModel::SelectedRole).toBool());
        QCOMPARE(resets.count(), 0);
        QCOMPARE(grid.rows.rowCount(), 4);
    }

    void aBurstOfChangesMakesOneUpdate()
    {
        Grid grid;
        grid.write("Artist", "A");
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 1);
        QSignalSpy updates(&grid.rows, &AlbumListModel::refreshed);
        for (const char16_t *text : {u"x", u"xy", u"xyz"}) {
            grid.model->setSearch(QString::fromUtf16(text));
        }
        grid.model->setFormatFilter(QStringLiteral("MP3"));
        grid.model->setHiResOnly(true);
        QCOMPARE(updates.count(), 0);
        QTRY_COMPARE(grid.rows.rowCount(), 0);
        QCOMPARE(updates.count(), 1);
    }

    void forgottenCoversAreLetGo()
    {
        Grid grid;
        grid.write("Artist", "A", 2, png(Qt::red));
        grid.write("Artist", "B", 2, png(Qt::green));
        grid.import();
        QTRY_COMPARE(grid.rows.rowCount(), 2);
        QVERIFY(grid.value(0, AlbumListModel::CoverRole) != grid.value(1, AlbumListModel::CoverRole));
        QCOMPARE(grid.covers->size(), 2);
        grid.rows.forget(0);
        QTRY_COMPARE(grid.rows.rowCount(), 1);
        QTRY_COMPARE(grid.covers->size(), 1);
    }
};

QTEST_MAIN(AlbumListModelTest)
#include "AlbumListModelTest.moc"
