#include "platform/tasks/Background.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

/// An action on its way to the UI thread.
class Post final : public QEvent {
public:
    explicit Post(std::function<void()> what)
        : QEvent(QEvent::User)
        , action(std::move(what))
    {
    }

    std::function<void()> action;
};

/// Where they arrive. A receiver of our own, because the hand-over must be ordered before the action is touched.
class Postbox final : public QObject {
public:
    Postbox() { moveToThread(QCoreApplication::instance()->thread()); }

    bool event(QEvent *event) override
    {
        BackgroundJobs::orderHandover();
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        static_cast<Post *>(event)->action();
        return true;
    }
};

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
    static QThreadPool *const discovery = makePool(4, QThread::LowPriority);
    static QThreadPool *const utility = makePool(4, QThread::LowPriority);
    static QThreadPool *const userInitiated = makePool(4, QThread::NormalPriority);
    switch (priority) {
    case JobPriority::Discovery:
        return *discovery;
    case JobPriority::Utility:
        return *utility;
    case JobPriority::UserInitiated:
        break;
    }
    return *userInitiated;
}

bool drain(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    bool idle = true;
    for (const JobPriority priority : {JobPriority::UserInitiated, JobPriority::Utility, JobPriority::Discovery}) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        idle = pool(priority).waitForDone(int(std::max<std::int64_t>(0, left.count()))) && idle;
    }
    return idle;
}

} // namespace BackgroundJobs

void postToUi(std::function<void()> action)
{
    static auto *const postbox = new Postbox; // lives as long as the process: a job can end later than all else
    auto *post = new Post(std::move(action));
    BackgroundJobs::orderHandover();
    QCoreApplication::postEvent(postbox, post);
}
