// A model with its own settings, panels and disks, and the means to wait for its jobs.
#pragma once

#include "model/Model.h"

#include "FlacBytes.h"
#include "SampleDevice.h"

#include <QSignalSpy>
#include <QTest>

#include <future>

/// Keeps each question; the test answers in place of the desktop.
class KeptPanels final : public Panels {
public:
    void open(const Request &request, Answer answered) override
    {
        requests.push_back(request);
        answer = std::move(answered);
    }

    std::vector<Request> requests;
    Answer answer;
};

/// Keeps the jobs that are started in its lifetime from running until its end. For what must hold while a job is under
/// way: a short one may be done, and its result landed, before the call that starts it returns.
class HeldJobs {
public:
    explicit HeldJobs(std::initializer_list<JobPriority> priorities
        = {JobPriority::Discovery, JobPriority::Utility, JobPriority::UserInitiated})
    {
        for (const JobPriority priority : priorities) {
            QThreadPool &pool = BackgroundJobs::pool(priority);
            for (int thread = 0; thread < pool.maxThreadCount(); ++thread) {
                BackgroundJobs::startOn(pool, [end = m_end] { end.wait(); });
            }
        }
    }
    ~HeldJobs() { m_promise.set_value(); }
    HeldJobs(const HeldJobs &) = delete;
    HeldJobs &operator=(const HeldJobs &) = delete;

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_end = m_promise.get_future().share();
};

struct ModelDesk {
    TemporaryFolder folder {quickFolder()};
    Settings settings {folder / "config/settings.json"};
    KeptPanels panels;
    /// What the next discovery finds.
    std::shared_ptr<std::vector<Device>> found = std::make_shared<std::vector<Device>>();
    std::shared_ptr<std::atomic<int>> discoveries = std::make_shared<std::atomic<int>>(0);
    std::function<void(const fs::path &)> ejector = [](const fs::path &) { };

    std::function<TimeLeft::Moment()> clock = TimeLeft::Moment::clock::now;

    Catalogue::Site themeSite; ///< none: no server is asked
    std::unique_ptr<CoverSearch> covers = std::make_unique<CoverSearch>(CoverServices {}); ///< none either

    [[nodiscard]] ModelEnvironment environment()
    {
        return {.settings = settings,
            .panels = panels,
            .deviceDiscovery =
                [found = found, discoveries = discoveries] {
                    ++*discoveries;
                    return *found;
                },
            .ejectVolume = [this](const fs::path &root) { ejector(root); },
            .supportFolder = folder / "data",
            .themeSite = themeSite,
            .covers = *covers,
            .audioOutput = "null",
            .clock = [this] { return clock(); }};
    }

    [[nodiscard]] std::unique_ptr<MarluneModel> start()
    {
        auto model = std::make_unique<MarluneModel>(environment());
        waitForJobs(*model);
        return model;
    }

    /// Makes a folder that is a device, as a mounted disk or as a test folder.
    [[nodiscard]] Device makeDevice(const char *name, bool isVolume) const
    {
        ::makeDevice(folder, name);
        Device device = Device::inspect(folder / name);
        device.isVolume = isVolume;
        return device;
    }

    /// Until no job runs and each result has landed.
    static void waitForJobs(const MarluneModel &model)
    {
        for (int round = 0; round < 8; ++round) { // one job's result may begin the next
            while (model.busy()) { // no polling: these tests do so a thousand times
                QVERIFY(QSignalSpy(&model, &MarluneModel::busyChanged).wait(20'000));
            }
            QVERIFY(BackgroundJobs::drain(std::chrono::seconds(20)));
            QCoreApplication::processEvents();
        }
    }

    /// Has the model begin something, and waits for the end of it.
    static void run(MarluneModel &model, void (MarluneModel::*begin)())
    {
        (model.*begin)();
        waitForJobs(model);
    }

    /// The same with the music of this place.
    static void import(MarluneModel &model, const fs::path &place, bool enqueue = false)
    {
        model.importURLs({place}, false, enqueue);
        waitForJobs(model);
    }

    /// Answers the model's last question with this file.
    void answer(const MarluneModel &model, const fs::path &file)
    {
        panels.answer({file});
        waitForJobs(model);
    }

    /// Lets no job of the model's run before this has been done.
    static void hold(const MarluneModel &model, const std::function<void()> &meanwhile)
    {
        {
            const HeldJobs held;
            meanwhile();
        }
        waitForJobs(model);
    }
};

/// A FLAC file with these comments and perhaps a front cover, and bytes that make it differ from others.
inline std::string flacWith(const std::vector<std::string> &comments, const std::string &audio = "audio", int bits = 16,
    const std::string &cover = {})
{
    return "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(44100, std::uint64_t(bits), 44100))
        + (cover.empty() ? "" : FlacBytes::block(6, FlacBytes::picture(3, cover)))
        + FlacBytes::block(4, FlacBytes::comments(comments), true) + audio;
}
