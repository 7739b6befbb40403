// Jobs of known lengths, looked at once a second as the window does.
#include "model/TimeLeft.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace std::chrono_literals;

namespace {

constexpr TimeLeft::Expectation unknown;

/// A number of steps, each of which takes that many seconds and is reported.
struct Steps {
    int count = 0;
    double seconds = 0;
};

struct Stage {
    TimeLeft::Expectation expected;
    std::vector<Steps> work;
    bool reports = true;
};

struct Job {
    const char *name;
    std::vector<Stage> stages;
    double firstShown = -1; ///< second of the job; below 0: never
    int rises = 0; ///< how often the time gets longer
    double mayMissBy = 3; ///< seconds, beside a fifth of what is left
    double knowableFrom = 0; ///< before that second the end cannot be known
    double lastShown = 1e9; ///< nothing is shown after that second
};

struct Seen {
    double first = -1;
    double last = -1;
    int rises = 0;
};

TimeLeft::Moment at(double second)
{
    return TimeLeft::Moment() + std::chrono::duration_cast<TimeLeft::Moment::duration>(TimeLeft::Seconds(second));
}

Seen watch(const Job &job)
{
    std::vector<TimeLeft::Expectation> expected;
    double length = 0;
    for (const Stage &stage : job.stages) {
        expected.push_back(stage.expected);
        for (const Steps &part : stage.work) {
            length += part.count * part.seconds;
        }
    }
    TimeLeft left;
    left.begin(expected, at(0));
    Seen seen;
    double before = 1e9;
    const auto lookAt = [&](double second) {
        if (const auto shown = left.at(at(second))) {
            const auto now = double(shown->count());
            const double truth = length - second;
            if (second >= job.knowableFrom) {
                EXPECT_NEAR(now, truth, job.mayMissBy + truth / 5) << "at " << second;
            }
            seen.first = seen.first < 0 ? second : seen.first;
            seen.last = second;
            seen.rises += now > before ? 1 : 0;
            before = now;
        }
    };
    double second = 0;
    double look = 0;
    for (const Stage &stage : job.stages) {
        double steps = 0;
        for (const Steps &part : stage.work) {
            steps += part.count;
        }
        double done = 0;
        for (const Steps &part : stage.work) {
            for (int i = 0; i < part.count; ++i) {
                for (second += part.seconds; look < second; ++look) {
                    lookAt(look);
                }
                stage.reports ? left.report(++done / steps, at(second)) : void();
            }
        }
        left.beginNextStage(at(second));
    }
    return seen;
}

} // namespace

TEST(TimeLeft, isShownOnceItIsSteadyAndGetsLongerOnlyWithCause)
{
    const Job jobs[] = {
        {.name = "even", .stages = {{unknown, {{100, 0.5}}}}, .firstShown = 5},
        {.name = "few large steps", .stages = {{unknown, {{10, 9}}}}, .firstShown = 12},
        {.name = "over before a figure is of use", .stages = {{unknown, {{40, 0.09}}}}},
        {.name = "nothing reported", .stages = {{unknown, {{60, 1}}, false}}},
        {.name = "a second stage that is far quicker",
            .stages = {{unknown, {{60, 1}}}, {6s, {{30, 0.13}}}, {3s, {{1, 1}}, false}},
            .firstShown = 6,
            .mayMissBy = 5},
        {.name = "a second stage that is slower than expected",
            .stages = {{unknown, {{40, 0.5}}}, {4s, {{40, 1}}}},
            .firstShown = 5,
            .rises = 1,
            .knowableFrom = 30},
        {.name = "a first stage of which nothing is known",
            .stages = {{unknown, {{1, 20}}, false}, {unknown, {{100, 0.3}}}},
            .firstShown = 26},
        {.name = "a stage to come of which nothing is known",
            .stages = {{unknown, {{40, 0.5}}}, {unknown, {{1, 30}}, false}}},
        {.name = "a last stage that outlasts its time",
            .stages = {{unknown, {{40, 0.5}}}, {3s, {{1, 30}}, false}},
            .firstShown = 5,
            .knowableFrom = 50,
            .lastShown = 23},
        {.name = "one slow step", .stages = {{unknown, {{60, 0.5}, {1, 2}, {60, 0.5}}}}, .firstShown = 5},
        {.name = "slower from the middle on",
            .stages = {{unknown, {{60, 0.5}, {60, 2}}}},
            .firstShown = 5,
            .rises = 4,
            .knowableFrom = 62},
        {.name = "quicker from the middle on",
            .stages = {{unknown, {{30, 2}, {120, 0.5}}}},
            .firstShown = 9,
            .knowableFrom = 80},
    };
    for (const Job &job : jobs) {
        SCOPED_TRACE(job.name);
        const Seen seen = watch(job);
        EXPECT_EQ(seen.first, job.firstShown);
        EXPECT_EQ(seen.rises, job.rises);
        EXPECT_LE(seen.last, job.lastShown);
    }
}
