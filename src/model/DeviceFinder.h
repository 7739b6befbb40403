// Which devices there are, and what becomes of the selected one when they change.
//
// A discovery takes its time, and meanwhile disks come and go and the user chooses: this decides what its result still
// says. Pure state of the UI thread: who runs a discovery, and selects, is the model.
#pragma once

#include "storage/Device.h"

#include <optional>
#include <vector>

class DeviceFinder {
public:
    /// What follows from a discovery's result.
    struct Outcome {
        enum class Selection : std::uint8_t {
            Keep, ///< as it is
            Update, ///< the same device, read anew
            Lost, ///< the selected device is gone
        };
        Selection selection = Selection::Keep;
        std::optional<Device> update; ///< what Update brings
        std::optional<Device> sole; ///< the only device there is, to be selected where none is by then
        bool listChanged = false;
        bool again = false; ///< one more discovery has to follow
    };

    [[nodiscard]] const std::vector<Device> &devices() const { return m_devices; }

    /// Begins a discovery; false if one is under way.
    bool begin();
    /// The number of the latest discovery, for the question whether it still runs.
    [[nodiscard]] int latest() const { return m_discoveries; }
    [[nodiscard]] bool isRunning(int discovery) const { return m_running && m_discoveries == discovery; }
    /// A discovery under way may have looked too early: one more follows it.
    void repeatAfterwards() { m_again = m_running; }
    /// A disk has left: what a discovery under way saw of it counts no more.
    void onDiskLeft(const std::filesystem::path &root) { m_left.push_back(root); }
    /// The user chooses a device. A discovery that began before may not have seen it.
    int onChoice() { return ++m_choices; }
    [[nodiscard]] bool isLatestChoice(int choice) const { return m_choices == choice; }
    /// Takes the result of the discovery under way. `ejecting`: the selected device is on its way out.
    [[nodiscard]] Outcome finish(std::vector<Device> found, const std::optional<Device> &selected, bool ejecting);

private:
    std::vector<Device> m_devices;
    bool m_running = false;
    bool m_again = false;
    int m_discoveries = 0; ///< begun so far
    int m_choices = 0; ///< so far
    int m_choicesBefore = 0; ///< when the discovery began
    std::vector<std::filesystem::path> m_left; ///< since it began
};

/// The devices among all mounted volumes, in their order. A volume that cannot be read is none. Blocking.
[[nodiscard]] std::vector<Device> discoverDevices();
