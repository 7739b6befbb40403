// A real exFAT disk for one test: an image file behind a loop device, mounted in a folder of the test's.
//
// Needs root, mkfs.exfat (exfatprogs), a loop device and a driver: FUSE's (exfat-fuse) or the kernel's. Where one of
// them is missing, available() is false and reason() says what; a test then skips. Whatever happens the disk is
// unmounted with the object; the loop device goes with its last user.
#pragma once

#include "support/TemporaryFolder.h"

#include <QProcess>
#include <QStandardPaths>

#include <sys/mount.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <thread>

class ExfatVolume {
public:
    /// Makes the folder `mountPoint` if need be and mounts an empty disk of `bytes` there.
    explicit ExfatVolume(fs::path mountPoint, std::int64_t bytes = 64 << 20)
        : m_mountPoint(std::move(mountPoint))
        , m_image(m_folder.write("image", {}))
    {
        fs::resize_file(m_image, std::uintmax_t(bytes)); // sparse
        (void)(run("mkfs.exfat", {m_image}) && mount());
    }
    ~ExfatVolume()
    {
        for (int attempt = 0;
            m_mounted && ::umount2(m_mountPoint.c_str(), attempt < 20 ? 0 : MNT_DETACH) != 0 && attempt <= 20;
            ++attempt) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50)); // something keeps it busy for a moment
        }
        ::rmdir(m_mountPoint.c_str());
    }
    ExfatVolume(const ExfatVolume &) = delete;
    ExfatVolume &operator=(const ExfatVolume &) = delete;

    /// Whether the disk could be made and mounted.
    [[nodiscard]] bool available() const { return m_reason.empty(); }
    [[nodiscard]] const std::string &reason() const { return m_reason; }
    [[nodiscard]] const fs::path &mountPoint() const { return m_mountPoint; }

private:
    bool mount()
    {
        std::error_code ignored;
        fs::create_directories(m_mountPoint, ignored);
        if (!run("losetup", {"--find", "--show", m_image})) {
            return false;
        }
        const fs::path device = m_output;
        const bool fuse = !QStandardPaths::findExecutable(u"mount.exfat-fuse"_s, m_folders).isEmpty();
        m_mounted = fuse ? run("mount.exfat-fuse", {device, m_mountPoint})
                         : run("mount", {"-t", "exfat", device, m_mountPoint});
        return run("losetup", {"--detach", device}) && m_mounted; // from here the mount alone keeps the loop device
    }

    /// Runs it from a thread of its own: the thread sanitizer is blind for the locks of one that has started a process.
    bool run(const char *name, const std::vector<fs::path> &arguments)
    {
        return std::async(std::launch::async, [&] { return runHere(name, arguments); }).get();
    }

    /// Keeps what the program writes, and the reason where it fails or is missing.
    bool runHere(const char *name, const std::vector<fs::path> &arguments)
    {
        QStringList texts;
        for (const fs::path &argument : arguments) {
            texts.append(QString::fromLocal8Bit(argument.c_str()));
        }
        QProcess process;
        process.start(QStandardPaths::findExecutable(QString::fromLatin1(name), m_folders), texts);
        const bool done = process.waitForFinished() && process.exitCode() == 0;
        m_output = process.readAllStandardOutput().trimmed().toStdString();
        if (!done) {
            m_reason = name + (": " + process.readAllStandardError().trimmed().toStdString());
        }
        return done;
    }

    const QStringList m_folders {u"/usr/sbin"_s, u"/sbin"_s, u"/usr/bin"_s, u"/bin"_s};
    TemporaryFolder m_folder;
    fs::path m_mountPoint;
    fs::path m_image;
    std::string m_output;
    std::string m_reason;
    bool m_mounted = false;
};
