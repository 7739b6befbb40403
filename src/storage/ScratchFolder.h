// A private folder among the system's temporary files, for one piece of work.
//
// It goes with the object, with all that it holds by then, whatever happened. Blocking; any thread but the UI's.
#pragma once

#include <filesystem>

namespace Storage {

class ScratchFolder {
public:
    /// Makes it, empty, for this user alone. Throws MarluneError where the computer's disk is full, or
    /// std::system_error.
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    /// Removes it before the object goes.
    void remove() const;

    /// No link lies on the way to it.
    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace Storage
