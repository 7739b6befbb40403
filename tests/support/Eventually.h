// Runs the event loop until something has come true.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <functional>

/// Whether `condition` came true within ten seconds.
inline bool eventually(const std::function<bool()> &condition)
{
    for (QDeadlineTimer deadline(10'000); !deadline.hasExpired();) {
        if (condition()) {
            return true;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return condition();
}
