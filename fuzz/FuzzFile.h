// A file in memory for parsers that read files, and the check that fuzz targets make.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

/// A finding: ends the run, so that the fuzzer keeps the input.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// One file under /dev/shm, written anew for each input.
class FuzzFile {
public:
    explicit FuzzFile(const char *extension)
        : m_path("/dev/shm/marlune-fuzz-" + std::to_string(::getpid()) + extension)
        , m_descriptor(::open(m_path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600))
    {
        require(m_descriptor >= 0);
    }
    ~FuzzFile()
    {
        ::close(m_descriptor);
        ::unlink(m_path.c_str());
    }
    FuzzFile(const FuzzFile &) = delete;
    FuzzFile &operator=(const FuzzFile &) = delete;

    [[nodiscard]] const std::filesystem::path &write(const std::uint8_t *data, std::size_t size) const
    {
        require(::ftruncate(m_descriptor, 0) == 0);
        require(::pwrite(m_descriptor, data, size, 0) == ssize_t(size));
        return m_path;
    }

private:
    std::filesystem::path m_path;
    int m_descriptor;
};
