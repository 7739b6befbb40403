// What a screen reader is given: the real window's tree and events, read from the accessibility bus.
#include "NewUser.h"
#include "ScreenReader.h"

#include "ui/words/Language.h"

#include <QGuiApplication>

namespace {

ScreenReader *reader = nullptr;

/// "role: name" of what is shown in these trees; a selected or checked one with a star.
QStringList shownIn(const std::vector<AccessibleNode> &nodes)
{
    QStringList result;
    for (const AccessibleNode &node : nodes) {
        if (node.is(AccessibleNode::Showing)) {
            const bool chosen = node.is(AccessibleNode::Selected) || node.is(AccessibleNode::Checked);
            result.append(node.role + u": "_s + node.name + (chosen ? u"*"_s : QString()));
        }
        result += shownIn(node.children);
    }
    return result;
}

/// Those of `wanted` that are not among what is shown now, and what is shown without a role or a name.
QStringList amissNow(const QStringList &wanted)
{
    const QStringList shown = shownIn(reader->windows());
    QStringList result;
    for (const QString &one : wanted) {
        if (!shown.contains(one)) {
            result.append(u"no "_s + one);
        }
    }
    for (const QString &one : shown) {
        if (one.startsWith(u"filler") || (one.endsWith(u": ") && one != u"scroll bar: " && one != u"menu bar: ")) {
            result.append(u"bare "_s + one);
        }
    }
    return result;
}

/// The same, once it has had the time to be as wanted.
QStringList amiss(const QStringList &wanted)
{
    (void)QTest::qWaitFor([&] { return amissNow(wanted).isEmpty(); }, 10'000);
    return amissNow(wanted);
}

/// Whether the latest object that got the focus is this one, by "role: name", or soon will be.
bool reported(const char *what)
{
    return QTest::qWaitFor([what] {
        const QStringList focused = reader->takeFocused();
        return !focused.isEmpty() && focused.back() == QString::fromUtf8(what);
    });
}

} // namespace

class AccessibilityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        MarluneApp::prepareApplication();
        QTRY_VERIFY_WITH_TIMEOUT(reader->connect(), 30'000);
    }

    void tellsWhatEachThingOnItsPagesIs()
    {
        NewUser user;
        user.begin(sample / "Music/Low Tide Almanac");
        const QStringList library
            = u"page tab list: Działy|page tab: Muzyka*|page tab: Motywy|heading: Twoja muzyka|label: Albumy: 1 · Utwory: 8|panel: Źródło|radio button: Na Macu*|radio button: FLAC|check box: Hi-Res|combo box: Sortuj|list: Albumy|list item: Soundings, Low Tide Almanac|label: 8 utworów · 1,6 MB|heading: Twój iPod|label: Połączony|label: IPOD"_s
                  .split(u'|');
        QCOMPARE(amiss(library), QStringList());
        user.program.model().setSection(Section::Quality);
        const QStringList quality
            = u"page tab: Porządek*|heading: Porządek w kolekcji|label: Okładki: 1|radio button: Wszystko*|list: Problemy|list item: Soundings. Duża okładka — przygotuj wersję 500 × 500 dla iPoda."_s
                  .split(u'|');
        QCOMPARE(amiss(quality), QStringList());
        Language::create(nullptr, nullptr)->setChoice(u"en"_s);
        const QStringList english
            = u"page tab list: Sections|page tab: Tidy up*|heading: Tidy up your collection|label: Covers: 1|radio button: All*|list: Issues|list item: Soundings. Large cover – make a 500 × 500 version for the iPod.|panel: Language|radio button: EN*|heading: Your iPod"_s
                  .split(u'|');
        QCOMPARE(amiss(english), QStringList());
        user.program.model().revealCoverFlow();
        user.program.model().scanDeviceMusic();
        const QStringList carousel
            = u"panel: Cover Flow|heading: Cover Flow|label: Albums: 1|list: Albums|push button: Early Crossings, Halcyon Ferry|label: 1 / 1 · Tracks: 4|push button: Open album|push button: Full screen"_s
                  .split(u'|');
        QCOMPARE(amiss(carousel), QStringList());
        user.item("flowStage", user.carousel()->contentItem())->forceActiveFocus();
        QVERIFY(reported("push button: Early Crossings, Halcyon Ferry"));
    }

    void tellsOfAPickersChoicesAndOfAMessage()
    {
        NewUser user;
        user.begin(sample / "Music/Low Tide Almanac");
        user.clickNamed("sortPicker");
        QCOMPARE(amiss({u"list: Sortuj"_s, u"list item: Rozmiar"_s}), QStringList());
        QTest::keyClick(user.program.window(), Qt::Key_Escape);
        user.clickNamed("transferButton");
        QTRY_VERIFY_WITH_TIMEOUT(user.item("alertOk"), 30'000);
        QCOMPARE(amiss({u"dialog: Marlune"_s, u"alert message: Marlune. "_s + *user.program.model().alert()}),
            QStringList());
        QVERIFY(reported("push button: OK"));
        user.clickNamed("alertOk");
        QTRY_VERIFY(!user.item("alertOk"));
    }

    void tellsWhereTheArrowsLead()
    {
        NewUser user;
        user.begin(sample / "Music/Mira Vossler");
        QTRY_VERIFY(user.count() > 1 && user.tile("Paper Moons"));
        QTest::mouseClick(user.program.window(), Qt::LeftButton, Qt::NoModifier,
            user.tile("Paper Moons")->mapToScene({20, 20}).toPoint());
        QTRY_VERIFY(user.item("sheetTitle")); // the album's sheet
        QVERIFY(reported("push button: Gotowe"));
        QCOMPARE(amiss({u"dialog: Szczegóły albumu"_s, u"heading: Paper Moons"_s, u"push button: Odsłuchaj album"_s,
                     u"list: Utwory"_s, u"list item: 02, Cut-Out Sky*"_s,
                     u"push button: Pokaż okładkę w pełnym rozmiarze"_s}),
            QStringList());
        QTest::keyClick(user.program.window(), Qt::Key_Escape);
        QVERIFY(reported("list item: Paper Moons, Mira Vossler"));
        QTest::keyClick(user.program.window(), Qt::Key_Home);
        QVERIFY(reported("list item: Glass Gardens, Mira Vossler"));
        user.click(user.item("formatPicker"));
        QTest::keyClick(user.program.window(), Qt::Key_Left);
        QVERIFY(reported("radio button: FLAC"));
    }
};

int main(int argc, char **argv)
{
    ScreenReader made;
    reader = &made;
    const QGuiApplication application(argc, argv);
    AccessibilityTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "AccessibilityTest.moc"
