#include "platform/TerminationRequests.h"

#include <QSocketNotifier>

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
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

void handleBy(void (*handler)(int))
{
    for (const int signal : endingSignals) {
        struct sigaction action = {};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        ::sigaction(signal, &action, nullptr);
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
        handleBy(SIG_DFL);
        Q_EMIT requested();
    });
    handleBy(wake);
}

TerminationRequests::~TerminationRequests()
{
    if (wakeDescriptor >= 0) {
        handleBy(SIG_DFL);
        ::close(wakeDescriptor);
        wakeDescriptor = -1;
    }
}
