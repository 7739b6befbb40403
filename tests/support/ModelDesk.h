// A model with its own settings, panels and disks, and the means to wait for its jobs.
#pragma once

#include "model/Model.h"

#include "FlacBytes.h"
#include "SampleDevice.h"

#include <QTest>

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

struct ModelDesk {
    TemporaryFolder folder;
    Settings settings {folder / "config/settings.json"};
    KeptPanels panels;
    /// What the next discovery finds.
    std::shared_ptr<std::vector<Device>> found = std::make_shared<std::vector<Device>>();
    std::shared_ptr<std::atomic<int>> discoveries = std::make_shared<std::atomic<int>>(0);
    std::function<void(const std::filesystem::path &)> ejector = [](const std::filesystem::path &) { };

    [[nodiscard]] ModelEnvironment environment()
    {
        return {.settings = settings,
            .panels = panels,
            .deviceDiscovery =
                [found = found, discoveries = discoveries] {
                    ++*discoveries;
                    return *found;
                },
            .ejectVolume = [this](const std::filesystem::path &root) { ejector(root); },
            .supportFolder = folder / "data"};
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
        for (int round = 0; round < 3; ++round) {
            QTRY_VERIFY_WITH_TIMEOUT(!model.busy(), 20'000);
            QVERIFY(BackgroundJobs::drain(std::chrono::seconds(20)));
            QCoreApplication::processEvents();
        }
    }
};

/// A FLAC file with these comments, and bytes that make it differ from others.
inline std::string flacWith(const std::vector<std::string> &comments, const std::string &audio = "audio")
{
    return "fLaC" + FlacBytes::block(0, FlacBytes::streamInfo(44100, 16, 44100))
        + FlacBytes::block(4, FlacBytes::comments(comments), true) + audio;
}
