// A fresh folder for one test, removed with all it holds.
#pragma once

#include "Names.h"

#include <QByteArray>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class TemporaryFolder {
public:
    explicit TemporaryFolder(const fs::path &parent = fs::temp_directory_path())
    {
        std::string name = (parent / "marlune-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_path = fs::canonical(name);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] const fs::path &path() const { return m_path; }
    [[nodiscard]] fs::path operator/(const fs::path &relative) const { return m_path / relative; }

    /// Writes a file and the folders above it; throws if that fails, so that a broken set-up is no passing test.
    fs::path write(const fs::path &relative, std::string_view bytes) const
    {
        const fs::path file = m_path / relative;
        fs::create_directories(file.parent_path());
        std::ofstream stream(file, std::ios::binary);
        stream.write(bytes.data(), std::streamsize(bytes.size()));
        stream.close();
        if (!stream) {
            throw std::runtime_error("cannot write " + file.string());
        }
        return file;
    }

private:
    fs::path m_path;
};

/// In memory where that is a place with room: for tests that write tens of thousands of files.
inline fs::path quickFolder()
{
    static const fs::path own = fs::temp_directory_path(); // before a test exchanges it
    std::error_code none;
    const bool hasRoom = fs::space("/dev/shm", none).available > std::uintmax_t(2) << 30;
    return hasRoom && !none ? "/dev/shm" : own;
}

/// A file of tests/data.
inline fs::path dataFile(const fs::path &relative)
{
    return fs::path(MARLUNE_SOURCE_DIR) / "tests/data" / relative;
}

inline std::string fileBytes(const fs::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}
