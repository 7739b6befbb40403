// The outline of folders: the tree of hostile paths, and its rows under random opening, filtering and rebuilding, held
// against a plain reference and watched by Qt's own tester.
#include "support/ModelDesk.h"
#include "ui/library/FolderTreeModel.h"

#include "platform/files/PathText.h"

#include <QAbstractItemModelTester>

#include <map>
#include <random>
#include <set>

using namespace std::string_literals;

namespace {

/// One line a node: its depth as dots, its name, '/' for a folder.
QString outline(const std::vector<std::string> &paths, const std::optional<fs::path> &root = std::nullopt)
{
    PathList files;
    for (const std::string &path : paths) {
        files.add(path);
    }
    const FolderTree tree(files, root, root ? Files::name(*root) : u"Pliki"_s);
    QStringList lines;
    std::set<QString> ids;
    for (std::uint32_t node = 0; node < tree.size(); ++node) {
        const FolderNode &shown = tree[node];
        lines += QString(shown.depth, u'.') + shown.name + (shown.isFolder() ? u"/"_s : QString());
        ids.insert(tree.id(node));
    }
    return ids.size() == tree.size() ? lines.join(u' ') : u"ids are not unique: "_s + lines.join(u' ');
}

/// The rows of a real model's outline, and beside it what is known of the files by plain means.
struct Outline {
    ModelDesk desk;
    std::unique_ptr<MarluneModel> model = desk.start();
    FolderTreeModel rows {*model};
    QAbstractItemModelTester tester {&rows, QAbstractItemModelTester::FailureReportingMode::QtTest};

    void write(const std::string &place, const std::string &title = "Title", int bits = 16) const
    {
        desk.folder.write(
            "music/" + place + ".flac", flacWith({"ARTIST=Artist", "ALBUM=A", "TITLE=" + title}, place, bits));
    }
    void import() const { ModelDesk::import(*model, desk.folder / "music"); }
    void show() const { model->setViewMode(viewModeText(ViewMode::Folders)); }
    [[nodiscard]] QVariant value(int row, int role) const { return rows.data(rows.index(row), role); }
    [[nodiscard]] QString names() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            result += value(row, FolderTreeModel::NameRole).toString().replace(u' ', u'-');
        }
        return result.join(u' ');
    }
    [[nodiscard]] int rowOf(const QString &name) const { return int(names().split(u' ').indexOf(name)); }
    [[nodiscard]] QStringList ids() const
    {
        QStringList result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            result += *rows.nodeId(row);
        }
        return result;
    }
    /// The ids of rows with this role set.
    [[nodiscard]] std::set<QString> idsWith(int role) const
    {
        std::set<QString> result;
        for (int row = 0; row < rows.rowCount(); ++row) {
            if (value(row, role).toBool()) {
                result.insert(*rows.nodeId(row));
            }
        }
        return result;
    }
};

/// What is seen while `open` are: each file that matches, and the open folders around it, in the order of `order`.
std::set<QString> expected(const MarluneModel &model, const std::set<QString> &open)
{
    std::set<QString> result;
    for (const Track &track : model.activeTracks()) {
        if (!model.matches(track)) {
            continue;
        }
        const QStringList parts = Files::text(track.url).mid(1).split(u'/');
        QString id;
        result.insert(id);
        for (const QString &part : parts) {
            if (!open.contains(id)) {
                break;
            }
            id += (id.isEmpty() ? QString() : u"/"_s) + part;
            result.insert(id);
        }
    }
    return result;
}

} // namespace

class FolderTreeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void buildsTheTreeOfAnyPaths_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("shown");
        const QString none;
        QTest::newRow("numbers by value, folders among files, case ignored") << QStringList {u"/m/10/x"_s, u"/m/2/x"_s,
            u"/m/B"_s, u"/m/a/x"_s, u"/m/3"_s} << none << u"Pliki/ .m/ ..2/ ...x ..3 ..10/ ...x ..a/ ...x ..B"_s;
        QTest::newRow("names that begin with numbers, the same one too, or one that goes on in another script")
            << QStringList {u"/m/10 a"_s, u"/m/9 b"_s, u"/n/01 b"_s, u"/n/1 a"_s, u"/n/0 c"_s, u"/o/1\u0662"_s,
                   u"/o/3"_s}
            << none << u"Pliki/ .m/ ..9 b ..10 a .n/ ..0 c ..1 a ..01 b .o/ ..3 ..1\u0662"_s;
        QTest::newRow("below the root and outside of it") << QStringList {u"/d/iPod/Music/x"_s, u"/d/iPod2/y"_s,
            u"/z"_s} << u"/d/iPod"_s << u"iPod/ .d/ ..iPod2/ ...y .Music/ ..x .z"_s;
        QTest::newRow("a separator behind the root") << QStringList {u"/d/iPod/x"_s} << u"/d/iPod/"_s << u"iPod/ .x"_s;
        QTest::newRow("the root of all") << QStringList {u"/d/x"_s} << u"/"_s << u"// .d/ ..x"_s;
        QTest::newRow("empty components")
            << QStringList {u"//a///x"_s, u"/a/y/"_s, u"/"_s} << none << u"Pliki/ ./ .a/ ..x ..y"_s;
        QTest::newRow("one name for a folder and files, equal ones in their order") << QStringList {
            u"/a"_s, u"/A/x"_s, u"/a/x"_s, u"/a"_s, u"/A"_s} << none << u"Pliki/ .a .A/ ..x .a/ ..x .a .A"_s;
        QTest::newRow("the same file in the root and outside")
            << QStringList {u"/r/d/x"_s, u"/d/x"_s} << u"/r"_s << u"r/ .d/ ..x ..x"_s;
        QTest::newRow("names that are no words")
            << QStringList {u"/a\nb/\u202Ex"_s, QString(u"/a\nb/"_s + QChar(0xDCFF)), u"/\u200F"_s} << none
            << u"Pliki/ .\u200F .a\nb/ ..\u202Ex .."_s + QChar(0xDCFF);
        QTest::newRow("nothing") << QStringList {} << u"/r"_s << u"r/"_s;
    }
    void buildsTheTreeOfAnyPaths()
    {
        QFETCH(QStringList, paths);
        QFETCH(QString, root);
        std::vector<std::string> bytes;
        for (const QString &path : paths) {
            bytes.push_back(Files::fromText(path).native());
        }
        QTEST(outline(bytes, root.isEmpty() ? std::nullopt : std::optional(Files::fromText(root))), "shown");
    }

    void restsUntilItIsShownAndOpensWhatLeavesNoChoice()
    {
        Outline shown;
        shown.write("A/2");
        shown.write("A/10");
        shown.write("B/x");
        shown.import();
        QCOMPARE(shown.rows.rowCount(), 0);
        shown.show();
        QTRY_VERIFY(shown.names().endsWith(u" music A B"_s));
        QVERIFY(shown.names().startsWith(u"Pliki-na-Macu "_s));
        shown.rows.goIn(shown.rowOf(u"A"_s));
        QVERIFY(shown.names().endsWith(u" A 2.flac 10.flac B"_s));
        QCOMPARE(shown.value(shown.rowOf(u"A"_s), FolderTreeModel::CountRole).toInt(), 2);
        shown.rows.toggle(shown.rowOf(u"10.flac"_s));
        const auto share = [&](const char16_t *name) {
            return shown.value(shown.rowOf(QString::fromUtf16(name)), FolderTreeModel::ChosenRole).toInt();
        };
        QTRY_COMPARE(share(u"A"), int(FolderTreeModel::SomeChosen));
        shown.rows.toggle(shown.rowOf(u"A"_s));
        QTRY_COMPARE(share(u"A"), int(FolderTreeModel::AllChosen));
        QCOMPARE(share(u"B"), int(FolderTreeModel::NoneChosen));
        QCOMPARE(shown.model->queued().size(), 2);

        shown.rows.openAlbum(shown.rowOf(u"A"_s));
        QVERIFY(!shown.model->openAlbum());
        shown.rows.activate(shown.rowOf(u"2.flac"_s));
        QVERIFY(shown.model->openAlbum());
        shown.rows.walk(shown.rowOf(u"2.flac"_s), 0);
        shown.rows.goOut(shown.rows.currentRow());
        QCOMPARE(shown.rows.currentRow(), shown.rowOf(u"A"_s));
        shown.rows.goOut(shown.rows.currentRow());
        QVERIFY(shown.names().endsWith(u" A B"_s));
        QVERIFY(!shown.rows.canReveal(0) && shown.rows.canReveal(1));
    }

    void aSearchOpensWhatItFindsAndLeavesNoTrace()
    {
        Outline shown;
        for (const char *folder : {"A", "B", "C"}) {
            shown.write(folder + "/needle"s, "needle"s + folder);
            shown.write(folder + "/hay"s, "hay");
        }
        shown.import();
        shown.show();
        QTRY_VERIFY(shown.names().endsWith(u" A B C"_s));
        shown.rows.setOpen(shown.rowOf(u"B"_s), true);
        const QString before = shown.names();
        shown.model->setSearch(u"needle"_s);
        QTRY_VERIFY(shown.names().endsWith(u" A needle.flac B needle.flac C needle.flac"_s));
        shown.rows.setOpen(shown.rowOf(u"A"_s), false);
        shown.model->setSearch(u"needl"_s); // what was closed by hand stays closed
        QTest::qWait(20);
        QVERIFY(shown.names().endsWith(u" A B needle.flac C needle.flac"_s));
        shown.model->setSearch({});
        QTRY_COMPARE(shown.names(), before);
        shown.model->setSearch(u"needleA"_s); // but not in another search
        QTRY_VERIFY(shown.names().endsWith(u" A needle.flac"_s));
    }

    void itsRowsAreWhatAPlainListWouldBe()
    {
        Outline shown;
        std::mt19937 random(5);
        const auto roll = [&random](int below) { return int(random() % std::uint32_t(below)); };
        const auto grow = [&] {
            for (int i = 0; i < 12; ++i) {
                const char folder = char('a' + roll(3));
                shown.write(
                    folder + ("/"s + char('0' + roll(3))) + "/" + std::to_string(random()), "T", 16 + 8 * roll(2));
            }
            shown.import();
        };
        grow();
        shown.show();
        QTRY_VERIFY(shown.rows.rowCount() > 0);
        std::set<QString> open = shown.idsWith(FolderTreeModel::OpenRole);
        for (int step = 0; step < 300; ++step) {
            const int row = roll(shown.rows.rowCount());
            const QString id = *shown.rows.nodeId(row);
            const std::set<QString> marked = shown.idsWith(FolderTreeModel::MarkedRole);
            switch (roll(step % 60 == 59 ? 5 : 4)) {
            case 0:
            case 1:
                if (shown.value(row, FolderTreeModel::FolderRole).toBool() && row > 0) {
                    shown.rows.toggleOpen(row);
                    if (!open.erase(id)) {
                        open.insert(id);
                    }
                }
                break;
            case 2:
                shown.rows.click(row, roll(2) ? Qt::ControlModifier : Qt::ShiftModifier);
                continue;
            case 3:
                shown.model->setHiResOnly(roll(2) == 0);
                break;
            default:
                grow();
            }
            const std::set<QString> wanted = expected(*shown.model, open);
            const auto now = [&] {
                const QStringList ids = shown.ids();
                return std::set<QString>(ids.begin(), ids.end());
            };
            QTRY_COMPARE(now(), wanted);
            QCOMPARE(shown.rows.rowCount(), int(wanted.size()));
            for (const QString &each : marked) { // selected stays what is still seen
                QVERIFY(!wanted.contains(each) || shown.idsWith(FolderTreeModel::MarkedRole).contains(each));
            }
            QVERIFY(shown.rows.currentRow() >= 0 && shown.rows.currentRow() < shown.rows.rowCount());
        }
    }

    void eachSideKeepsWhatWasOpen()
    {
        Outline shown;
        shown.write("A/x");
        shown.write("B/x");
        shown.import();
        shown.show();
        QTRY_VERIFY(shown.names().endsWith(u" A B"_s));
        shown.rows.setOpen(shown.rowOf(u"B"_s), true);
        shown.rows.walk(shown.rowOf(u"x.flac"_s), 0);
        const QString before = shown.names();
        shown.model->select(shown.desk.makeDevice("IPOD", false));
        for (const char *name : {"One", "Two"}) {
            shown.desk.folder.write("IPOD/Music/"s + name + "/1.flac", flacWith({"TITLE=T"}, name));
        }
        shown.model->setLibraryOnDevice(true);
        QTRY_COMPARE(shown.rows.rowCount(), 0);
        ModelDesk::run(*shown.model, &MarluneModel::scanDeviceMusic);
        QTRY_COMPARE(shown.names(), u"IPOD Music One Two"_s);
        shown.rows.setOpen(2, true);
        ModelDesk::run(*shown.model, &MarluneModel::scanDeviceMusic);
        QTRY_COMPARE(shown.names(), u"IPOD Music One 1.flac Two"_s);
        shown.model->setLibraryOnDevice(false);
        QTRY_COMPARE(shown.names(), before);
        QCOMPARE(shown.rows.currentRow(), shown.rowOf(u"x.flac"_s));
        QVERIFY(shown.value(shown.rows.currentRow(), FolderTreeModel::MarkedRole).toBool());
    }
};

QTEST_MAIN(FolderTreeTest)
#include "FolderTreeTest.moc"
