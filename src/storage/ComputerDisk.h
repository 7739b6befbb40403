// What writes on the computer's disk while the user thinks of the device's.
//
// Blocking; no state; any thread but the UI's.
#pragma once

#include <filesystem>
#include <functional>

namespace Storage {

/// Calls `work`, which writes nowhere but on the computer. Where that disk is full, throws a MarluneError that names
/// it: the system's words would be taken for the device's. A failure of the system that names no file gets the name
/// `path`.
void onComputersDisk(const std::filesystem::path &path, const std::function<void()> &work);

} // namespace Storage
