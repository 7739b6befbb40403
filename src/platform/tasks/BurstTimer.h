// Does some work once for a burst of changes that ask for it: in the next turn of the event loop. UI thread.
#pragma once

#include <QTimer>

#include <functional>
#include <utility>

class BurstTimer {
public:
    explicit BurstTimer(std::function<void()> work)
    {
        m_timer.setSingleShot(true);
        m_timer.setInterval(0);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(work));
    }

    /// The work is due.
    void start() { m_timer.start(); }
    /// It is due whenever the sender emits one of these signals.
    template <typename Sender, typename... Signals> void follow(const Sender &sender, Signals... emitted)
    {
        (QObject::connect(&sender, emitted, &m_timer, qOverload<>(&QTimer::start)), ...);
    }

private:
    QTimer m_timer;
};
