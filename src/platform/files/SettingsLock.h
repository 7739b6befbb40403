// Held as long as a program works with a settings file: two would overwrite each other's changes.
//
// The kernel lets go of it with the process, however that ends, so no lock is ever left behind.
#pragma once

#include "platform/files/Files.h"

class SettingsLock {
public:
    /// Locks a file beside `settingsFile`. Throws MarluneError where another program, or another lock of this one,
    /// holds it. Where no lock can be had at all, as in a folder that cannot be written, it holds none and stays
    /// silent.
    explicit SettingsLock(const std::filesystem::path &settingsFile);

private:
    Files::Descriptor m_file;
};
