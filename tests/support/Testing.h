// What nearly every test of GoogleTest's uses.
#pragma once

#include "Messages.h"
#include "SampleDevice.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <gtest/gtest.h>

/// Whether `condition` came true within ten seconds, or as many milliseconds as given, of a running event loop.
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
