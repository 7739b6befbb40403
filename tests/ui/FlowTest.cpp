// The carousel: where covers stand and how they move, which pictures are held, which albums there are.
#include "support/ModelDesk.h"
#include "support/SampleTracks.h"
#include "ui/flow/CoverFlowPresenter.h"
#include "ui/flow/FlowCard.h"
#include "ui/flow/FlowPicture.h"
#include "ui/flow/FlowSpring.h"
#include "ui/flow/FlowStage.h"
#include "ui/pictures/CoverStore.h"

#include <QBuffer>
#include <QQuickWindow>
#include <QWheelEvent>

#include <cmath>
#include <numeric>

namespace {

using FlowGeometry::Pose;

QByteArray encoded(const QColor &colour, int side = 300)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer jpeg;
    if (!jpeg.open(QIODevice::WriteOnly) || !image.save(&jpeg, "JPEG", 95)) {
        qFatal("no picture could be made");
    }
    return jpeg.data();
}

bool isNear(const QColor &colour, const QColor &expected)
{
    return std::abs(colour.red() - expected.red()) < 8 && std::abs(colour.green() - expected.green()) < 8
        && std::abs(colour.blue() - expected.blue()) < 8;
}

/// The colour of a place's cover, as it would be shown now.
QColor shown(const FlowPictures &pictures, int place)
{
    const QImage card = pictures.card(place);
    return card.isNull() ? QColor() : card.pixelColor(card.width() / 2, card.width() / 2);
}

std::vector<FlowPicture *> cardsOf(const FlowStage &stage)
{
    std::vector<FlowPicture *> cards;
    for (QQuickItem *child : stage.childItems()) {
        cards.push_back(qobject_cast<FlowPicture *>(child));
    }
    return cards;
}

/// A stage of so many albums without covers, in a window that is never shown.
struct Theatre {
    explicit Theatre(int count)
    {
        window.resize(1000, 600);
        stage.setParentItem(window.contentItem());
        stage.setSize({1000, 460});
        for (int card = 0; card < FlowStage::cards(); ++card) {
            auto *picture = new FlowPicture;
            picture->setParent(&stage);
            picture->setParentItem(&stage);
        }
        stage.setCount(count);
    }

    /// The places that are seen, from the left.
    [[nodiscard]] std::vector<int> seen() const
    {
        std::vector<int> places;
        for (const FlowPicture *card : cardsOf(stage)) {
            if (card->opacity() > 0 && card->place() >= 0) {
                places.push_back(card->place());
            }
        }
        std::sort(places.begin(), places.end());
        return places;
    }
    int framesToRest()
    {
        int frames = 0;
        for (; stage.moving() && frames < 1000; ++frames) {
            stage.advance(1.0 / 60);
        }
        return frames;
    }

    QQuickWindow window;
    FlowStage stage;
};

struct Carousel {
    void add(const std::string &file, const std::vector<std::string> &comments, const QByteArray &cover = {})
    {
        desk.folder.write("IPOD/Music/" + file, flacWith(comments, file, 16, cover.toStdString()));
    }
    void open()
    {
        model->revealCoverFlow();
        read();
    }
    void read()
    {
        model->scanDeviceMusic();
        ModelDesk::waitForJobs(*model);
    }
    [[nodiscard]] QStringList titles()
    {
        QStringList titles;
        for (int place = 0; place < flow.count(); ++place) {
            titles.append(flow.nameAt(place));
        }
        return titles;
    }

    ModelDesk desk;
    Device device = desk.makeDevice("IPOD", false);
    bool found = (desk.found->push_back(device), true);
    std::unique_ptr<MarluneModel> model = desk.start();
    CoverFlowPresenter flow {*model, std::make_shared<CoverStore>()};
};

} // namespace

class FlowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coversStandAroundTheMiddle()
    {
        QCOMPARE(FlowGeometry::pose(0), (Pose {.opacity = 1, .angle = 0, .scale = 1, .shift = 0, .height = 10}));
        QCOMPARE(
            FlowGeometry::pose(-1), (Pose {.opacity = 1, .angle = 58, .scale = 0.78, .shift = -0.62, .height = 9}));
        QCOMPARE(FlowGeometry::pose(2), (Pose {.opacity = 1, .angle = -58, .scale = 0.78, .shift = 1.24, .height = 8}));
        QCOMPARE(FlowGeometry::pose(-3).opacity, 0.5);
        QCOMPARE(FlowGeometry::pose(4).opacity, 0.0);
        for (double offset = -4; offset < 4; offset += 0.01) { // nothing jumps between two places
            const Pose here = FlowGeometry::pose(offset);
            const Pose next = FlowGeometry::pose(offset + 0.01);
            QVERIFY(std::abs(next.angle - here.angle) < 0.6 && std::abs(next.scale - here.scale) < 0.003
                && std::abs(next.opacity - here.opacity) < 0.006);
        }
        QCOMPARE(FlowGeometry::coverSide(1000, 4000), 310.0);
        QCOMPARE(FlowGeometry::coverSide(4000, 286), 200.0);
        QCOMPARE(FlowGeometry::coverSide(4000, 4000), 520.0);
        QCOMPARE(FlowGeometry::coverSide(-1, 10), 0.0);
    }

    void aSideCoverTurnsTowardsTheMiddleUnderTheGivenEye()
    {
        const double side = 200;
        const QTransform left = FlowGeometry::projection(FlowGeometry::pose(-1), side).toTransform();
        const auto edge = [&](double x) {
            return left.map(QPointF(x, side * FlowGeometry::cardHeight)).y() - left.map(QPointF(x, 0)).y();
        };
        // The eye is at 1 / 0.65 of the card's height; the near edge lies half a width times the sine before the plane.
        const double eye = side * 1.38 / 0.65;
        const double before = side / 2 * std::sin(1.0122909661567112);
        QVERIFY(std::abs(edge(0) - side * 1.38 * 0.78 * eye / (eye - before)) < 0.01);
        QVERIFY(std::abs(edge(side) - side * 1.38 * 0.78 * eye / (eye + before)) < 0.01);
        const QPointF middle = left.map(QPointF(side / 2, side * 0.69));
        QVERIFY(std::abs(middle.x() - (side / 2 - 0.62 * side)) < 0.001 && std::abs(middle.y() - side * 0.69) < 0.001);
        QVERIFY(FlowGeometry::projection(FlowGeometry::pose(0), side).isIdentity());
    }

    void theSpringFollowsItsGoalWithoutAJump()
    {
        FlowSpring spring;
        spring.setGoal(1);
        double time = 0;
        double highest = 0;
        for (double before = 0; !spring.isAtRest() && time < 5; time += 0.001) {
            spring.advance(0.001);
            QVERIFY(std::abs(spring.place() - before) < 0.02);
            before = spring.place();
            highest = std::max(highest, before);
        }
        QVERIFY2(time > 0.3 && time < 0.7, qPrintable(QString::number(time)));
        // An impulse of this damping goes beyond by exp(-damping pi / sqrt(1 - damping²)) of its way.
        QVERIFY(std::abs(highest - 1 - std::exp(-0.88 * M_PI / std::sqrt(1 - 0.88 * 0.88))) < 0.0005);
        QCOMPARE(spring.place(), 1.0);

        // The same whatever the frames; another goal in flight changes neither place nor speed.
        FlowSpring coarse;
        FlowSpring fine;
        coarse.setGoal(3);
        fine.setGoal(3);
        coarse.advance(0.1);
        for (int step = 0; step < 100; ++step) {
            fine.advance(0.001);
        }
        QVERIFY(std::abs(coarse.place() - fine.place()) < 1e-9 && std::abs(coarse.speed() - fine.speed()) < 1e-6);
        const double speed = fine.speed();
        fine.setGoal(-2);
        QCOMPARE(fine.speed(), speed);
        fine.advance(0.0001);
        QVERIFY(fine.place() > coarse.place());
        // What is no time moves nothing.
        for (const double nothing : {0.0, -1.0, std::nan("")}) {
            const double place = fine.place();
            fine.advance(nothing);
            QCOMPARE(fine.place(), place);
        }
    }

    void theStageShowsSevenAndNoneBeyondTheEnds()
    {
        for (const auto &[count, index, expected] :
            {std::tuple(40, 20, std::vector {17, 18, 19, 20, 21, 22, 23}), std::tuple(40, 0, std::vector {0, 1, 2, 3}),
                std::tuple(40, 39, std::vector {36, 37, 38, 39}), std::tuple(1, 0, std::vector {0}),
                std::tuple(3, 1, std::vector {0, 1, 2}), std::tuple(0, 0, std::vector<int> {})}) {
            Theatre theatre(count);
            theatre.stage.setReduceMotion(true);
            theatre.stage.setIndex(index);
            QVERIFY(!theatre.stage.moving());
            QCOMPARE(theatre.seen(), expected);
        }
        Theatre unlit(2); // it learns of its albums before it has a size
        FlowPictures pictures;
        pictures.setCovers({{}, {}});
        unlit.stage.setSize({0, 0});
        unlit.stage.setPictures(&pictures);
        unlit.stage.setSize({1000, 460});
        pictures.setCovers({encoded(Qt::red), {}});
        QTRY_VERIFY(pictures.isFinal(0));
        unlit.window.show();
        QVERIFY(isNear(unlit.window.grabWindow().pixelColor(500, 230), Qt::red));
        for (const FlowPicture *card : cardsOf(unlit.stage)) {
            QCOMPARE(card->image().isNull(), card->place() < 0);
        }
    }

    void theStageMovesWithoutAJumpWhereverItIsLed()
    {
        Theatre theatre(2000);
        double before = 0;
        for (int frame = 0; frame < 300; ++frame) { // an arrow held for ten seconds
            theatre.stage.setIndex(theatre.stage.index() + 1);
            theatre.stage.advance(1.0 / 30);
            const std::vector<int> seen = theatre.seen();
            QVERIFY(seen.size() >= 4 && seen.size() <= std::size_t(FlowStage::cards()));
            const double middle = std::accumulate(seen.begin(), seen.end(), 0.0) / double(seen.size());
            QVERIFY2(frame < 8 || std::abs(middle - before - 1) < 1, qPrintable(QString::number(middle - before)));
            before = middle;
        }
        QVERIFY(theatre.framesToRest() < 60);
        QCOMPARE(theatre.seen(), (std::vector {297, 298, 299, 300, 301, 302, 303}));
        theatre.stage.setIndex(1999); // the long way is not gone on foot
        QVERIFY(theatre.seen().front() > 1970);
        QVERIFY(theatre.framesToRest() < 60);
        QCOMPARE(theatre.seen(), (std::vector {1996, 1997, 1998, 1999}));
        theatre.stage.setReduceMotion(true);
        theatre.stage.setIndex(5);
        QVERIFY(!theatre.stage.moving());
        QCOMPARE(theatre.seen().front(), 2);
    }

    void dragsAndWheelsAreSteps()
    {
        for (const auto &[distance, steps] : {std::pair(40, 0), std::pair(41, -1), std::pair(-40, 0), std::pair(-41, 1),
                 std::pair(900, -1), std::pair(0, 0)}) {
            QCOMPARE(FlowStage::stepsOfDrag(distance), steps);
        }
        Theatre theatre(9);
        QSignalSpy stepped(&theatre.stage, &FlowStage::stepped);
        for (const QPoint &turn :
            {QPoint(0, -120), QPoint(0, 240), QPoint(-60, 0), QPoint(-60, 0), QPoint(20, 70), QPoint(0, 60)}) {
            const Qt::ScrollPhase phase = turn.y() == 60 ? Qt::ScrollBegin : Qt::NoScrollPhase; // nothing is left over
            QWheelEvent event({9, 9}, {9, 9}, {}, turn, Qt::NoButton, Qt::NoModifier, phase, false);
            QCoreApplication::sendEvent(&theatre.stage, &event);
        }
        QCOMPARE(stepped, (QList<QVariantList> {{1}, {-2}, {1}}));
    }

    void aCardIsThePictureOverItsReflection()
    {
        QImage picture(200, 200, QImage::Format_RGB32);
        picture.fill(Qt::red);
        for (int x = 0; x < 200; ++x) {
            picture.setPixelColor(x, 199, Qt::green);
        }
        const QImage card = FlowCard::draw(picture);
        constexpr int edge = FlowCard::margin;
        QCOMPARE(card.size(), QSize(200 + 2 * edge, 276 + 2 * edge));
        QCOMPARE(card.pixelColor(0, 100).alpha(), 0);
        QCOMPARE(card.pixelColor(edge, edge), QColor(Qt::red));
        QCOMPARE(card.pixelColor(100, edge + 199), QColor(Qt::green));
        QVERIFY(qGreen(card.pixel(100, edge + 200)) > 0 && qRed(card.pixel(100, edge + 200)) == 0);
        QVERIFY(card.pixelColor(100, edge + 275).alpha() < card.pixelColor(100, edge + 230).alpha());
        QVERIFY(FlowCard::draw({}).isNull());
    }

    void picturesComeNearestFirstAndStayWithinTheirMemory()
    {
        FlowPictures pictures;
        pictures.setLargeSide(620);
        std::vector<QByteArray> covers;
        for (int place = 0; place < 60; ++place) {
            covers.push_back(place % 10 == 7 ? QByteArray()
                    : place % 10 == 8        ? "no picture"
                                             : encoded(QColor::fromHsv(place * 6, 255, 200)));
        }
        QSignalSpy arrived(&pictures, &FlowPictures::arrived);
        pictures.setCovers(covers);
        QCOMPARE(pictures.card(0).width(), 640 + 2 * FlowCard::margin); // a stand-in, and no waiting
        QVERIFY(pictures.card(-1).isNull() && pictures.card(60).isNull());
        QTRY_VERIFY(pictures.isFinal(0) && pictures.isFinal(4));
        QVERIFY(arrived.first().first().toInt() <= 4);
        const auto colour = [](int place) { return QColor::fromHsv(place * 6, 255, 200); };
        QVERIFY(isNear(shown(pictures, 0), colour(0)));
        QTRY_VERIFY(isNear(shown(pictures, 59), colour(59))); // all are decoded once
        QVERIFY(!pictures.isFinal(59) && pictures.isFinal(57) && pictures.isFinal(58));

        // Led to the end, it holds what is near there and gives up what is far away.
        for (int place = 0; place < 60; place += 3) {
            pictures.lookAt(place);
            QTRY_VERIFY(pictures.isFinal(place));
            QVERIFY(pictures.largeBytes() <= FlowPictures::largeBudget);
        }
        pictures.lookAt(59);
        QTRY_VERIFY(pictures.isFinal(59) && pictures.isFinal(55));
        QVERIFY(!pictures.isFinal(0));

        // Other albums: what was decoded of the same bytes is there at once.
        std::vector<QByteArray> others {covers[59], covers[7], covers[58]};
        pictures.setCovers(others);
        QVERIFY(isNear(shown(pictures, 0), colour(59)) && pictures.isFinal(1));
        pictures.setCovers({});
        QVERIFY(pictures.card(0).isNull() && pictures.largeBytes() == 0);
    }

    void albumsComeByArtistAndTitleAndKeepTheMiddleOne()
    {
        Carousel carousel;
        carousel.add("z/1.flac", {"ARTIST=Żuk", "ALBUM=a", "TITLE=t"});
        carousel.add("b/1.flac", {"ARTIST=band 10", "ALBUM=x", "TITLE=t"});
        carousel.add("a/1.flac", {"ARTIST=Band 9", "ALBUM=y", "TITLE=t", "DISCNUMBER=1"}, encoded(Qt::red));
        carousel.add("a/2.flac", {"ARTIST=Band 9", "ALBUM=y", "TITLE=u", "DISCNUMBER=2"});
        QVERIFY(!carousel.flow.shown());
        carousel.open();
        QVERIFY(carousel.flow.shown() && carousel.model->libraryOnDevice());
        QCOMPARE(carousel.titles(), (QStringList {u"y, Band 9"_s, u"x, band 10"_s, u"a, Żuk"_s}));
        QCOMPARE(carousel.flow.facts(), u"1 / 3 · 2 utworów · 2 CD"_s);
        QCOMPARE(carousel.flow.countText(), u"3 albumów"_s);
        QTRY_VERIFY(carousel.flow.pictures()->isFinal(0) && isNear(shown(*carousel.flow.pictures(), 0), Qt::red));

        carousel.flow.select(-5);
        QCOMPARE(carousel.flow.index(), 0);
        carousel.flow.select(99);
        QCOMPARE(carousel.flow.index(), 2);
        QCOMPARE(carousel.flow.facts(), u"3 / 3 · 1 utworów"_s);
        carousel.add("c/1.flac", {"ARTIST=Coda", "ALBUM=n", "TITLE=t"});
        carousel.read();
        QCOMPARE(carousel.flow.count(), 4);
        QCOMPARE(carousel.flow.albumTitle(), u"a"_s);
        QCOMPARE(carousel.flow.index(), 3);
        fs::remove_all(carousel.device.root / "Music/z");
        carousel.read();
        QCOMPARE(carousel.flow.albumTitle(), u"n"_s); // the last one, since it has gone

        // The album's sheet is about the device, whichever side is shown.
        carousel.flow.openDetail();
        carousel.model->setLibraryOnDevice(false);
        QVERIFY(carousel.flow.detail()->wanted() && carousel.flow.detail()->deviceSide());
        QTRY_VERIFY(carousel.flow.detail()->available());
        carousel.flow.play();
        QCOMPARE(carousel.model->playback().current()->album, u"n"_s);
        carousel.model->playback().stop();

        // It ends with the window, and with the device; three clicks begin it anew.
        carousel.flow.dismiss();
        QVERIFY(carousel.flow.count() == 0 && !carousel.flow.detail()->wanted());
        carousel.model->revealCoverFlow();
        const QSignalSpy front(&carousel.flow, &CoverFlowPresenter::frontWanted);
        carousel.model->revealCoverFlow();
        QCOMPARE(front.count(), 1);
        carousel.flow.dismiss(); // during the build
        ModelDesk::waitForJobs(*carousel.model);
        QVERIFY(carousel.flow.count() == 0 && !carousel.flow.loading());
        carousel.model->revealCoverFlow();
        QTRY_COMPARE(carousel.flow.count(), 3);
        carousel.desk.found->clear();
        carousel.model->volumeUnmounted(carousel.device.root);
        ModelDesk::waitForJobs(*carousel.model);
        QVERIFY(!carousel.model->device());
        QTRY_VERIFY(!carousel.flow.shown());
        carousel.model->revealCoverFlow();
        QVERIFY(!carousel.flow.shown());
    }
};

QTEST_MAIN(FlowTest)
#include "FlowTest.moc"
