#include "model/RunningWork.h"

#include <utility>

RunningWork::RunningWork(Listener listener, std::function<TimeLeft::Moment()> clock)
    : m_listener(std::move(listener))
    , m_clock(std::move(clock))
{
}

std::optional<std::chrono::seconds> RunningWork::timeLeft()
{
    return cancelling() ? std::nullopt : m_timeLeft.at(m_clock());
}

void RunningWork::begin(const QString &status, Ends ends, std::vector<TimeLeft::Expectation> stages)
{
    Q_ASSERT(!m_busy);
    m_statusBefore = m_status;
    m_stop = ends == Ends::BetweenFiles ? std::stop_source() : std::stop_source(std::nostopstate);
    m_timeLeft.begin(std::move(stages), m_clock());
    setProgress(0);
    setBusy(true);
    setJobStatus(status);
}

void RunningWork::beginNextStage(const QString &status)
{
    m_timeLeft.beginNextStage(m_clock());
    setProgress(0);
    setJobStatus(status);
}

void RunningWork::setJobStatus(const QString &status)
{
    m_jobStatus = status;
    setStatus(status);
}

void RunningWork::report(double progress, std::optional<double> share)
{
    m_timeLeft.report(share.value_or(progress), m_clock());
    setProgress(progress);
}

void RunningWork::putStatusBack()
{
    if (m_status == m_jobStatus) {
        setStatus(m_statusBefore);
    }
}

void RunningWork::end()
{
    Q_ASSERT(m_busy);
    const bool wasCancelling = cancelling();
    m_stop = std::stop_source(std::nostopstate);
    m_timeLeft = {};
    setBusy(false);
    if (wasCancelling) {
        m_listener.cancellingChanged();
    }
}

void RunningWork::cancel()
{
    if (m_stop.request_stop()) {
        m_listener.cancellingChanged();
    }
}

void RunningWork::setBusy(bool busy)
{
    if (std::exchange(m_busy, busy) != busy) {
        m_listener.busyChanged();
    }
}

void RunningWork::setProgress(double progress)
{
    if (std::exchange(m_progress, progress) != progress) {
        m_listener.progressChanged();
    }
}

void RunningWork::setStatus(const QString &status)
{
    if (m_status != status) {
        m_status = status;
        m_listener.statusChanged();
    }
}

void RunningWork::setAlert(const std::optional<QString> &alert)
{
    if (m_alert != alert) {
        m_alert = alert;
        m_listener.alertChanged();
    }
}
