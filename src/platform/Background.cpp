#include "platform/Background.h"

#include <QCoreApplication>

namespace {

QThreadPool *makePool(int threads, QThread::Priority priority)
{
    auto *pool = new QThreadPool; // lives as long as the process: a hung disk must not hold up its end
    pool->setMaxThreadCount(threads);
    pool->setThreadPriority(priority);
    return pool;
}

} // namespace

namespace BackgroundJobs {

QThreadPool &pool(JobPriority priority)
{
    // More threads than cores: these jobs wait for disks most of their time.
    static QThreadPool *const utility = makePool(4, QThread::LowPriority);
    static QThreadPool *const userInitiated = makePool(4, QThread::NormalPriority);
    return priority == JobPriority::Utility ? *utility : *userInitiated;
}

bool drain(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    bool idle = true;
    for (const JobPriority priority : {JobPriority::UserInitiated, JobPriority::Utility}) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        idle = pool(priority).waitForDone(int(std::max<std::int64_t>(0, left.count()))) && idle;
    }
    return idle;
}

} // namespace BackgroundJobs

void postToUi(std::function<void()> action)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(action), Qt::QueuedConnection);
}
