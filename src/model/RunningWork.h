// The one long job that can be under way, and what the program says of itself: progress, status, alert.
//
// A job begins once, where busy() is false, and on every way out it ends once. One that can end between two files looks
// at its stop token there; the user's wish to end it comes by that alone. A plain part of the model, of the UI
// thread; whoever listens hears of each change.
#pragma once

#include "model/TimeLeft.h"

#include <QString>

#include <functional>
#include <stop_token>

class RunningWork {
public:
    struct Listener {
        std::function<void()> busyChanged;
        std::function<void()> cancellingChanged;
        std::function<void()> progressChanged;
        std::function<void()> statusChanged;
        std::function<void()> alertChanged;
    };
    /// `clock` says what time it is.
    RunningWork(Listener listener, std::function<TimeLeft::Moment()> clock);

    [[nodiscard]] bool busy() const { return m_busy; }
    /// Whether the running job can be ended early.
    [[nodiscard]] bool cancellable() const { return m_stop.stop_possible(); }
    /// Whether it has been asked to end and has not ended yet.
    [[nodiscard]] bool cancelling() const { return m_stop.stop_requested(); }
    /// Of the running job's present stage, 0 to 1; 0 where it cannot be said.
    [[nodiscard]] double progress() const { return m_progress; }
    /// What may be shown of the time that the job still takes, nothing once it is to end early; to be asked about once
    /// a second.
    [[nodiscard]] std::optional<std::chrono::seconds> timeLeft();
    [[nodiscard]] const QString &status() const { return m_status; }
    [[nodiscard]] const std::optional<QString> &alert() const { return m_alert; }

    enum class Ends : std::uint8_t { AtItsEnd, BetweenFiles };
    void begin(const QString &status, Ends ends, std::vector<TimeLeft::Expectation> stages = {std::nullopt});
    /// Of the running job.
    [[nodiscard]] std::stop_token stopToken() const { return m_stop.get_token(); }
    /// Asks the running job to end early. Does nothing where it cannot.
    void cancel();
    void beginNextStage(const QString &status);
    /// A status of the job itself.
    void setJobStatus(const QString &status);
    /// `progress` of the present stage, 0 to 1; `share` of its time, where that is another one.
    void report(double progress, std::optional<double> share = std::nullopt);
    /// For a job that has changed nothing: the status from before it comes back, unless a newer one than the job's own
    /// is shown.
    void putStatusBack();
    void end();

    void setStatus(const QString &status);
    void setAlert(const std::optional<QString> &alert);

private:
    void setBusy(bool busy);
    void setProgress(double progress);

    Listener m_listener;
    std::function<TimeLeft::Moment()> m_clock;
    bool m_busy = false;
    double m_progress = 0;
    TimeLeft m_timeLeft;
    std::stop_source m_stop {std::nostopstate};
    QString m_statusBefore; ///< before the running job
    QString m_jobStatus; ///< the last of the running job's own
    QString m_status = QStringLiteral("Gotowy na Twoją muzykę");
    std::optional<QString> m_alert;
};
