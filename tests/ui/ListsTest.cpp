// What long lists share: selected rows, letters that lead to a row, files that are dragged out.
#include "support/Testing.h"
#include "ui/lists/FileDrag.h"
#include "ui/lists/RowSelection.h"
#include "ui/lists/TypeAhead.h"

#include <QElapsedTimer>
#include <QMimeData>
#include <QUrl>

#include <random>
#include <set>

using namespace std::chrono_literals;
using Rows = std::vector<int>;

TEST(RowSelection, followsClicksAndKeys)
{
    RowSelection selection;
    selection.reset(9);
    const auto step = [&](RowSelection::Span changed, RowSelection::Span expected, const Rows &rows, int current) {
        EXPECT_EQ(changed, expected);
        EXPECT_EQ(selection.rows(), rows);
        EXPECT_EQ(selection.count(), int(rows.size()));
        EXPECT_EQ(selection.current(), current);
    };
    const RowSelection::Span none {0, -1};
    const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
    step(selection.walk(9, {}), none, {}, -1);
    step(selection.click(4, {}), {4, 4}, {4}, 4);
    step(selection.click(6, Qt::ShiftModifier), {4, 6}, {4, 5, 6}, 6);
    step(selection.walk(3, Qt::ShiftModifier), {3, 6}, {3, 4}, 3); // about the same anchor
    step(selection.click(7, Qt::ControlModifier), {7, 7}, {3, 4, 7}, 7);
    step(selection.walk(8, Qt::ControlModifier), none, {3, 4, 7}, 8); // moves alone
    step(selection.click(8, both), {7, 8}, {3, 4, 7, 8}, 8);
    step(selection.toggle(3), {3, 3}, {4, 7, 8}, 3);
    step(selection.only(0), {0, 8}, {0}, 0);
    step(selection.all(), {0, 8}, {0, 1, 2, 3, 4, 5, 6, 7, 8}, 0);
    step(selection.clear(), {0, 8}, {}, 0);
    step(selection.extendTo(-1, false), none, {}, 0);
}

TEST(RowSelection, staysWithItsRowsWhateverComesAndGoes)
{
    std::mt19937 random(5); // the same changes in each run
    const auto below = [&](int limit) { return int(random() % unsigned(std::max(1, limit))); };
    std::vector<int> list; // names of rows
    std::set<int> chosen; // names of those selected
    RowSelection selection;
    int name = 0;
    for (int round = 0; round < 2000; ++round) {
        const int size = int(list.size());
        const int first = below(size + 1);
        const int before = selection.current() >= 0 ? list[std::size_t(selection.current())] : -1;
        const int kind = below(4);
        if (kind == 0) {
            const int count = 1 + below(4);
            for (int i = 0; i < count; ++i) {
                list.insert(list.begin() + first + i, ++name);
            }
            selection.insertRows(first, count);
        } else if (kind == 1 && first < size) {
            const int count = 1 + below(std::min(4, size - first));
            list.erase(list.begin() + first, list.begin() + first + count);
            selection.removeRows(first, count);
        } else if (kind == 2) { // another order, and some gone
            std::vector<int> next = list;
            std::shuffle(next.begin(), next.end(), random);
            next.resize(next.size() - std::min(next.size(), std::size_t(below(3))));
            Rows places;
            for (const int row : list) {
                const auto found = std::find(next.begin(), next.end(), row);
                places.push_back(found == next.end() ? -1 : int(found - next.begin()));
            }
            list = next;
            selection.remap(places, int(list.size()));
        } else if (first < size) {
            const int row = list[std::size_t(first)];
            (void)(chosen.contains(row) ? chosen.erase(row) : chosen.insert(row).second);
            selection.toggle(first);
            continue;
        }
        Rows expected;
        for (int row = 0; row < int(list.size()); ++row) {
            if (chosen.contains(list[std::size_t(row)])) {
                expected.push_back(row);
            }
        }
        ASSERT_EQ(selection.rows(), expected) << round;
        ASSERT_EQ(selection.count(), int(expected.size()));
        ASSERT_LT(selection.current(), int(list.size()));
        if (std::find(list.begin(), list.end(), before) != list.end()) {
            ASSERT_EQ(list[std::size_t(selection.current())], before);
        }
    }
}

TEST(TypeAhead, aLetterFindsItselfAndABareOneItsAccentsToo)
{
    const std::tuple<QString, QString, bool> table[]
        = {{u"Łąka"_s, u"l"_s, true}, {u"Łąka"_s, u"LA"_s, true}, {u"Łąka"_s, u"ł"_s, true}, {u"Lato"_s, u"ł"_s, false},
            {u"ŁA\u0328ka"_s, u"łą"_s, true}, {u"Łąka"_s, u"la\u0328"_s, true}, {u"e\u0301te\u0301"_s, u"é"_s, true},
            {u"été"_s, u"ete"_s, true}, {u"ete"_s, u"é"_s, false}, {u"Ä"_s, u"ä"_s, true}, {u""_s, u"a"_s, false},
            {u"a"_s, u"ab"_s, false}, {u"\U00010428x"_s, u"\U00010400X"_s, true}, {u"ÉTÉ"_s, u"ét"_s, true},
            {u"\u0301"_s, u"a"_s, false}, {u"\xD800"_s, u"a"_s, false}, {u"Noc i dzień"_s, u"noc i"_s, true}};
    for (const auto &[name, typed, found] : table) {
        EXPECT_EQ(TypeAhead::begins(name, typed), found) << name.toStdString();
    }
}

TEST(TypeAhead, lettersLeadOnAndRound)
{
    TypeAhead::Clock::time_point now {};
    TypeAhead typing([&now] { return now; });
    const QStringList names {u"Alfa"_s, u"Beta"_s, u"Łąka"_s, u"Las"_s, u"Lis i lis"_s};
    int current = 0;
    const auto type = [&](const QString &text, std::chrono::milliseconds after) {
        now += after;
        const int found = typing.type(text, current, int(names.size()), [&](int row) { return names[row]; });
        current = found < 0 ? current : found;
        return found;
    };
    const std::tuple<QString, std::chrono::milliseconds, int> steps[] = {{u"l"_s, 2s, 2}, {u"l"_s, 100ms, 3},
        {u"l"_s, 2s, 4}, {u"l"_s, 100ms, 2}, {u"i"_s, 100ms, 4}, {u"s"_s, 999ms, 4}, {u" "_s, 10ms, 4},
        {u"x"_s, 10ms, -1}, {u"a"_s, 2s, 0}, {u"l"_s, 10ms, 0}, {u"b"_s, 1s, 1}};
    for (const auto &[text, after, row] : steps) {
        EXPECT_EQ(type(text, after), row) << text.toStdString();
    }
    EXPECT_TRUE(typing.isUnderWay() && typing.takes(u" "_s, Qt::ShiftModifier));
    for (const QString &none : {u"\x1B"_s, u"\b"_s, QString()}) {
        EXPECT_FALSE(typing.takes(none, Qt::NoModifier)) << none.toStdString();
    }
    EXPECT_FALSE(typing.takes(u"a"_s, Qt::AltModifier));
    typing.end();
    EXPECT_FALSE(typing.isUnderWay() || typing.takes(u" "_s, Qt::NoModifier));
    EXPECT_EQ(typing.type(u"a"_s, -1, 0, {}), -1);
}

TEST(FileDrag, filesLeaveByteForByte)
{
    const std::vector<fs::path> paths {"/a/Żółw 100%.flac", "/a/\xA3\xFF\n\r.mp3", "/a/#?&;b.ogg"};
    const std::vector<QUuid> ids {QUuid::createUuid(), QUuid::createUuid()};
    for (const bool onDevice : {false, true}) {
        const auto data = FileDrag::mimeData({.paths = paths, .tracks = ids, .onDevice = onDevice});
        EXPECT_EQ(data->data(u"text/uri-list"_s).toStdString(),
            "file:///a/%C5%BB%C3%B3%C5%82w%20100%25.flac\r\nfile:///a/%A3%FF%0A%0D.mp3\r\nfile:///a/"
            "%23%3F%26%3Bb.ogg\r\n");
        EXPECT_TRUE(data->hasUrls() && FileDrag::isOwn(data->formats()));
        EXPECT_EQ(data->urls().size(), 3);
        EXPECT_EQ(FileDrag::isFromDevice(data->formats()), onDevice);
        EXPECT_EQ(FileDrag::tracks(data->data(FileDrag::trackFormat())).size(), onDevice ? 0 : 2);
    }
    EXPECT_FALSE(FileDrag::isOwn({u"text/uri-list"_s}));
    EXPECT_TRUE(FileDrag::tracks("short").isEmpty());
}

/// Far above what is measured, and far below what a wrong order of work would take.
TEST(Lists, aHundredThousandRowsAreQuick)
{
    constexpr int rows = 100'000;
    RowSelection selection;
    selection.reset(rows);
    QElapsedTimer timer;
    timer.start();
    selection.all();
    selection.only(0);
    selection.extendTo(rows - 1, false);
    const double chosen = double(timer.nsecsElapsed()) / 1e6;
    QStringList names;
    for (int row = 0; row < rows; ++row) {
        names.append((row % 2 != 0 ? u"Żółw "_s : u"Zebra "_s) + QString::number(row));
    }
    TypeAhead typing;
    timer.restart();
    EXPECT_EQ(typing.type(u"y"_s, 5, rows, [&](int row) { return names[row]; }), -1);
    const double sought = double(timer.nsecsElapsed()) / 1e6;
    RecordProperty("selection_ms", std::to_string(chosen));
    RecordProperty("type_ahead_ms", std::to_string(sought));
    EXPECT_LT(chosen, 500); // of a few milliseconds, with room for a sanitizer's
    EXPECT_LT(sought, 2'000);
}
