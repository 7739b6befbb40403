#include "model/DeviceFinder.h"

#include "platform/MarluneError.h"
#include "platform/volumes/Volumes.h"

#include <algorithm>
#include <utility>

bool DeviceFinder::begin()
{
    if (m_running) {
        return false;
    }
    m_running = true;
    ++m_discoveries;
    m_choicesBefore = m_choices;
    m_left.clear();
    return true;
}

DeviceFinder::Outcome DeviceFinder::finish(
    std::vector<Device> found, const std::optional<Device> &selected, bool ejecting)
{
    m_running = false;
    Outcome outcome;
    outcome.again = std::exchange(m_again, false);
    std::erase_if(found,
        [this](const Device &device) { return std::find(m_left.begin(), m_left.end(), device.root) != m_left.end(); });
    outcome.listChanged = m_devices != found;
    m_devices = std::move(found);
    if (selected && selected->isVolume) {
        const auto same = std::find_if(
            m_devices.begin(), m_devices.end(), [&](const Device &device) { return device.root == selected->root; });
        if (same != m_devices.end()) {
            outcome.selection = Outcome::Selection::Update;
            outcome.update = *same;
        } else if (m_choices != m_choicesBefore) {
            outcome.again = true; // what became of the chosen disk is seen by the next discovery
        } else if (!ejecting) {
            outcome.selection = Outcome::Selection::Lost;
        }
    }
    if (m_devices.size() == 1) {
        outcome.sole = m_devices.front();
    }
    return outcome;
}

std::vector<Device> discoverDevices()
{
    std::vector<Device> devices;
    for (const std::filesystem::path &volume : Volumes::mounted()) {
        try {
            devices.push_back(Device::inspect(volume));
        } catch (const MarluneError &) { // any other disk
        } catch (const std::system_error &) { // a disk that just left
        }
    }
    return devices;
}
