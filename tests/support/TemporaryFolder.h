// A fresh folder for one test, removed with all it holds.
#pragma once

#include <QByteArray>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path &parent = std::filesystem::temp_directory_path())
    {
        std::string name = (parent / "marlune-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_path = std::filesystem::canonical(name);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path &relative) const
    {
        return m_path / relative;
    }

    /// Writes a file and the folders above it; throws if that fails, so that a broken set-up is no passing test.
    std::filesystem::path write(const std::filesystem::path &relative, std::string_view bytes) const
    {
        const std::filesystem::path file = m_path / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream stream(file, std::ios::binary);
        stream.write(bytes.data(), std::streamsize(bytes.size()));
        stream.close();
        if (!stream) {
            throw std::runtime_error("cannot write " + file.string());
        }
        return file;
    }

private:
    std::filesystem::path m_path;
};

inline std::string fileBytes(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}
