// Runs the event loop until something has come true.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <functional>

/// Whether `condition` came true within ten seconds, or as many milliseconds as given.
inline bool eventually(const std::function<bool()> &condition, int timeout = 10'000)
{
    for (QDeadlineTimer deadline(timeout); !deadline.hasExpired();) {
        if (condition()) {
            return true;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return condition();
}
