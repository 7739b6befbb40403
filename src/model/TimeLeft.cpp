#include "model/TimeLeft.h"

#include <algorithm>

namespace {

using Moment = TimeLeft::Moment;
using Seconds = TimeLeft::Seconds;

constexpr Seconds steadyFor {3};
constexpr Seconds quickerFor {2};
constexpr Seconds slowerFor {5};

// A stage's pace counts as shown after so long, with so many reports or such a share of its work. It is that of the
// stage's last quarter, within these bounds.
constexpr Seconds paceAfter {2};
constexpr int paceReports = 3;
constexpr double paceShare = 0.1;
constexpr Seconds minPaceTime {15};
constexpr Seconds maxPaceTime {60};

/// By how much an end may move and still pass for the same.
Seconds tolerance(Seconds left)
{
    constexpr Seconds least {3};
    constexpr double share = 0.2;
    return std::max(least, left * share);
}

Moment after(Moment now, Seconds time)
{
    return now + std::chrono::duration_cast<Moment::duration>(time);
}

} // namespace

void TimeLeft::begin(std::vector<Expectation> stages, Moment now)
{
    *this = {};
    m_stages = std::move(stages);
    m_stageBegin = now;
    m_reports = {{now, 0}};
}

void TimeLeft::beginNextStage(Moment now)
{
    if (m_stages.size() > 1) {
        m_stages.erase(m_stages.begin());
        m_stageBegin = now;
        m_reports = {{now, 0}};
        m_reportCount = 0;
    }
}

void TimeLeft::report(double done, Moment now)
{
    done = done > 0 ? std::min(done, 1.0) : 0; // what is no number either
    if (m_stages.empty() || done <= m_reports.back().done) {
        return;
    }
    m_reports.push_back({now, done});
    ++m_reportCount;
    const Moment oldest = after(now, -std::clamp(Seconds(now - m_stageBegin) / 4, minPaceTime, maxPaceTime));
    while (m_reports.size() > 2 && m_reports[1].moment <= oldest) {
        m_reports.pop_front();
    }
}

bool TimeLeft::hasOwnPace() const
{
    const Reported &last = m_reports.back();
    return last.moment - m_stageBegin >= paceAfter && (m_reportCount >= paceReports || last.done >= paceShare);
}

TimeLeft::Seconds TimeLeft::leftAtPace(Moment now) const
{
    const Reported &first = m_reports.front();
    const Reported &last = m_reports.back();
    const auto left = [&first](Moment moment, double done) {
        return Seconds(moment - first.moment) * ((1 - done) / (done - first.done));
    };
    // Between two reports the clock goes on, and so, as long as the next one is not late, does the work.
    const Seconds onTime = left(last.moment, last.done) - Seconds(now - last.moment);
    const double step = last.done - m_reports[m_reports.size() - 2].done;
    return std::max(onTime, left(now, std::min(last.done + step, 1.0)));
}

TimeLeft::Expectation TimeLeft::leftOfStage(Moment now) const
{
    const Expectation &expected = m_stages.front();
    if (!hasOwnPace() && expected && *expected >= now - m_stageBegin) {
        return *expected - Seconds(now - m_stageBegin);
    }
    const bool isMeasurable = hasOwnPace() || (expected && m_reportCount > 0);
    return isMeasurable ? std::optional(leftAtPace(now)) : std::nullopt;
}

TimeLeft::Expectation TimeLeft::estimate(Moment now) const
{
    if (m_stages.empty()) {
        return std::nullopt;
    }
    Expectation left = leftOfStage(now);
    for (auto stage = m_stages.begin() + 1; left && stage != m_stages.end(); ++stage) {
        left = *stage ? std::optional(*left + **stage) : std::nullopt;
    }
    return left;
}

std::optional<std::chrono::seconds> TimeLeft::at(Moment now)
{
    const Expectation left = estimate(now);
    if (!left) {
        m_shownEnd.reset();
        m_steady.reset();
    } else if (m_shownEnd) {
        correctShown(*left, now);
    } else {
        awaitSteadiness(*left, now);
    }
    if (!m_shownEnd) {
        return std::nullopt;
    }
    return std::max(std::chrono::round<std::chrono::seconds>(*m_shownEnd - now), std::chrono::seconds(0));
}

void TimeLeft::Stretch::include(Moment end)
{
    earliest = std::min(earliest, end);
    latest = std::max(latest, end);
}

void TimeLeft::awaitSteadiness(Seconds left, Moment now)
{
    const Moment end = after(now, left);
    if (m_steady) {
        m_steady->include(end);
    }
    if (!m_steady || m_steady->latest - m_steady->earliest > tolerance(left)) {
        m_steady = {now, end, end};
    }
    if (now - m_steady->since >= steadyFor) {
        m_shownEnd = end;
        m_quicker.reset();
        m_slower.reset();
    }
}

void TimeLeft::correctShown(Seconds left, Moment now)
{
    const Moment end = after(now, left);
    const Moment shown = std::max(*m_shownEnd, now);
    const Moment::duration margin = after(now, tolerance(shown - now)) - now;
    const auto follow = [&](std::optional<Stretch> &apart, bool isApart, Seconds enough) {
        if (!isApart) {
            apart.reset();
            return false;
        }
        apart = apart.value_or(Stretch {now, end, end});
        apart->include(end);
        return now - apart->since >= enough;
    };
    if (follow(m_quicker, end < shown - margin, quickerFor)) {
        m_shownEnd = m_quicker->latest;
        m_quicker.reset();
    } else if (follow(m_slower, end > shown + margin, slowerFor)) {
        m_shownEnd = m_slower->earliest;
        m_slower.reset();
    }
}
