// How long a job may still take, as the user is shown it.
//
// A job is a row of stages (copying, covers, cleanup), each with a pace of its own: what one of them has shown says
// nothing about the next. The promises:
// - One estimate for the whole job. A stage that has not begun counts with what it is expected to take; one that has
//   shown its own pace counts by that.
// - Nothing is shown before the job has run for a while and its expected end has stopped moving about, nor where too
//   little is known: a stage to come without an expectation, or one that outlasts it without reporting anything.
// - Once shown, the time goes down with the clock. It goes down faster, or up, only where the work has been clearly
//   quicker or slower than shown for seconds on end, and then by no more than all estimates of these seconds agree on:
//   the beginning of a stage alone does neither.
//
// A plain value without a clock of its own: each call names the moment, none earlier than the call before.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

class TimeLeft {
public:
    using Moment = std::chrono::steady_clock::time_point;
    using Seconds = std::chrono::duration<double>;
    /// What a stage will take as far as can be said beforehand; absent: that cannot be said.
    using Expectation = std::optional<Seconds>;

    /// Begins a job with the first of its stages.
    void begin(std::vector<Expectation> stages, Moment now);
    /// Begins the next stage. Does nothing in the last one.
    void beginNextStage(Moment now);
    /// `done` is the share of the present stage's work that is done, 0 to 1.
    void report(double done, Moment now);
    /// What may be shown at this moment.
    [[nodiscard]] std::optional<std::chrono::seconds> at(Moment now);

private:
    struct Reported {
        Moment moment;
        double done;
    };
    /// An interval in which estimates agreed, and the bounds of the ends that they gave.
    struct Stretch {
        Moment since;
        Moment earliest;
        Moment latest;

        void include(Moment end);
    };

    [[nodiscard]] bool hasOwnPace() const;
    [[nodiscard]] Seconds leftAtPace(Moment now) const;
    [[nodiscard]] Expectation leftOfStage(Moment now) const;
    [[nodiscard]] Expectation estimate(Moment now) const;
    void awaitSteadiness(Seconds left, Moment now);
    void correctShown(Seconds left, Moment now);

    std::vector<Expectation> m_stages; ///< the present one first; empty: there is no job
    Moment m_stageBegin;
    std::deque<Reported> m_reports; ///< of this stage, its begin first, without those too old to tell its pace
    int m_reportCount = 0;
    std::optional<Moment> m_shownEnd;
    std::optional<Stretch> m_steady; ///< before anything is shown
    std::optional<Stretch> m_quicker; ///< than shown
    std::optional<Stretch> m_slower; ///< than shown
};
