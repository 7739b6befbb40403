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

/// The end of each step, from the job's begin: with the stage and its share done.
struct Report {
    double second;
    std::size_t stage;
    double done;
};

std::vector<Report> reportsOf(const Job &job)
{
    std::vector<Report> reports;
    double second = 0;
    for (std::size_t stage = 0; stage < job.stages.size(); ++stage) {
        double steps = 0;
        for (const Steps &part : job.stages[stage].work) {
            steps += part.count;
        }
        double done = 0;
        for (const Steps &part : job.stages[stage].work) {
            for (int i = 0; i < part.count; ++i) {
                second += part.seconds;
                reports.push_back({second, stage, ++done / steps});
            }
        }
    }
    return reports;
}

class Watch {
public:
    explicit Watch(const Job &job)
        : m_job(job)
    {
        std::vector<TimeLeft::Expectation> expected;
        for (const Stage &stage : job.stages) {
            expected.push_back(stage.expected);
        }
        m_left.begin(expected, at(0));
        const std::vector<Report> reports = reportsOf(job);
        m_length = reports.back().second;
        double look = 0;
        for (const Report &report : reports) {
            for (; look < report.second; ++look) {
                lookAt(look);
            }
            if (job.stages[report.stage].reports) {
                m_left.report(report.done, at(report.second));
            }
            if (report.done == 1) {
                m_left.beginNextStage(at(report.second));
            }
        }
    }

    double first = -1;
    double last = -1;
    int rises = 0;

private:
    static TimeLeft::Moment at(double second)
    {
        return TimeLeft::Moment() + std::chrono::duration_cast<TimeLeft::Moment::duration>(TimeLeft::Seconds(second));
    }

    void lookAt(double second)
    {
        const auto shown = m_left.at(at(second));
        if (!shown) {
            return;
        }
        const auto left = double(shown->count());
        const double truth = m_length - second;
        first = first < 0 ? second : first;
        last = second;
        if (second >= m_job.knowableFrom) {
            EXPECT_NEAR(left, truth, m_job.mayMissBy + truth / 5) << "at " << second;
        }
        rises += m_before && left > *m_before ? 1 : 0;
        m_before = left;
    }

    const Job &m_job;
    TimeLeft m_left;
    double m_length = 0;
    std::optional<double> m_before;
};

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
        const Watch watch(job);
        EXPECT_EQ(watch.first, job.firstShown);
        EXPECT_EQ(watch.rises, job.rises);
        EXPECT_LE(watch.last, job.lastShown);
    }
}
