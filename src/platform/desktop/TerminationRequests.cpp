#include "platform/desktop/TerminationRequests.h"

#include <QSocketNotifier>
#include <QTimer>

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>

namespace {

constexpr std::array endingSignals {SIGTERM, SIGINT, SIGHUP};

volatile std::sig_atomic_t wakeDescriptor = -1;

/// Only what is safe within a signal handler.
void wake(int)
{
    const int savedErrno = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor, &one, sizeof one);
    errno = savedErrno;
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) { // as nohup has it
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        ::sigaction(signal, &action, nullptr);
    }
}

void handleAll(void (*handler)(int))
{
    for (const int signal : endingSignals) {
        handle(signal, handler);
    }
}

} // namespace

TerminationRequests::TerminationRequests(QObject *parent)
    : QObject(parent)
{
    wakeDescriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeDescriptor < 0) {
        return; // the signals keep their usual effect
    }
    auto *notifier = new QSocketNotifier(wakeDescriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        QTimer::singleShot(std::chrono::seconds(1), this, [] { handle(SIGINT, SIG_DFL); });
        Q_EMIT requested();
    });
    handleAll(wake);
}

TerminationRequests::~TerminationRequests()
{
    if (wakeDescriptor >= 0) {
        handleAll(SIG_DFL);
        ::close(wakeDescriptor);
        wakeDescriptor = -1;
    }
}
