// The check for identical files: whether one runs, what the last one found, and what is said of it.
//
// A plain part of the model, of the UI thread; whoever listens hears of each change. The comparing itself runs in a job
// (quality/CollectionQuality.h).
#pragma once

#include "quality/QualityIssue.h"

#include <functional>

class DuplicateCheck {
public:
    struct Listener {
        std::function<void()> issuesChanged;
        std::function<void()> statusChanged;
    };
    explicit DuplicateCheck(Listener listener);

    [[nodiscard]] const std::vector<QualityIssue> &issues() const { return m_issues; }
    [[nodiscard]] const QString &status() const { return m_status; }
    /// Whether the issues are all that there are: a check came to its end. Those of one that was stopped are a part.
    [[nodiscard]] bool isComplete() const { return m_complete; }
    [[nodiscard]] bool isRunning() const { return m_running; }
    /// Whether other tracks have come since the check began: what it finds is of no use any more.
    [[nodiscard]] bool isOvertaken() const { return m_overtaken; }

    void begin();
    void finish(std::vector<QualityIssue> found);
    /// The check was not completed; `found` is what is known by then.
    void interrupt(std::vector<QualityIssue> found = {});
    /// The check is over, whatever came of it.
    void end() { m_running = false; }
    /// Other tracks are there now, and nothing is known of them.
    void forget();
    /// What interrupt() says.
    [[nodiscard]] static QString interrupted();

private:
    void set(const QString &status, std::vector<QualityIssue> found = {}, bool isComplete = false);

    Listener m_listener;
    std::vector<QualityIssue> m_issues;
    QString m_status;
    bool m_running = false;
    bool m_overtaken = false;
    bool m_complete = false;
};
