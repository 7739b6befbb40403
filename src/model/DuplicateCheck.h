// The check for identical files: whether one runs, what the last one found, and what is said of it.
//
// A plain part of the model, of the UI thread; whoever listens hears of each change. The comparing itself runs in a job
// (quality/CollectionQuality.h).
#pragma once

#include "quality/QualityIssue.h"

#include <functional>
#include <stop_token>

class DuplicateCheck {
public:
    struct Listener {
        std::function<void()> issuesChanged;
        std::function<void()> statusChanged;
    };
    explicit DuplicateCheck(Listener listener);

    [[nodiscard]] const std::vector<QualityIssue> &issues() const { return m_issues; }
    [[nodiscard]] const QString &status() const { return m_status; }
    /// Whether the issues are all that there are: a check came to its end.
    [[nodiscard]] bool isComplete() const { return m_complete; }
    [[nodiscard]] bool isRunning() const { return m_running; }

    /// Begins a check. Once the token asks for a stop, what the check finds is of no use any more.
    [[nodiscard]] std::stop_token begin();
    void finish(std::vector<QualityIssue> found);
    /// The check could not be completed.
    void fail();
    /// The check is over, whatever came of it.
    void end() { m_running = false; }
    void stop() { m_stop.request_stop(); }
    /// Other tracks are there now, and nothing is known of them.
    void forget();
    /// What fail() says.
    [[nodiscard]] static QString interrupted();

private:
    void set(const QString &status, std::optional<std::vector<QualityIssue>> found = {});

    Listener m_listener;
    std::vector<QualityIssue> m_issues;
    QString m_status;
    std::stop_source m_stop; ///< of the present check
    bool m_running = false;
    bool m_complete = false;
};
