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
    explicit ExfatVolume(std::filesystem::path mountPoint, std::int64_t bytes = 64 << 20)
        : m_mountPoint(std::move(mountPoint))
        , m_image(m_folder.write("image", {}))
    {
        std::filesystem::resize_file(m_image, std::uintmax_t(bytes)); // sparse
        (void)(run("mkfs.exfat", {m_image}) && mount());
    }
    ~ExfatVolume()
    {
        if (m_mounted && !unmount()) {
            ::umount2(m_mountPoint.c_str(), MNT_DETACH);
        }
        ::rmdir(m_mountPoint.c_str());
    }
    ExfatVolume(const ExfatVolume &) = delete;
    ExfatVolume &operator=(const ExfatVolume &) = delete;

    /// Whether the disk could be made and mounted.
    [[nodiscard]] bool available() const { return m_reason.empty(); }
    [[nodiscard]] const std::string &reason() const { return m_reason; }
    [[nodiscard]] const std::filesystem::path &mountPoint() const { return m_mountPoint; }

    /// Mounts the same disk again after unmount(); what was written is still there.
    bool mount()
    {
        std::error_code ignored;
        std::filesystem::create_directories(m_mountPoint, ignored);
        if (!run("losetup", {"--find", "--show", m_image})) {
            return false;
        }
        const std::filesystem::path device = m_output;
        const bool fuse = !QStandardPaths::findExecutable(QStringLiteral("mount.exfat-fuse"), m_folders).isEmpty();
        m_mounted = fuse ? run("mount.exfat-fuse", {device, m_mountPoint})
                         : run("mount", {"-t", "exfat", device, m_mountPoint});
        return run("losetup", {"--detach", device}) && m_mounted; // from here the mount alone keeps the loop device
    }

    /// False if something keeps the disk busy for longer than a moment.
    bool unmount()
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            if (::umount2(m_mountPoint.c_str(), 0) == 0) {
                m_mounted = false;
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

private:
    /// Runs it from a thread of its own: the thread sanitizer is blind for the locks of one that has started a process.
    bool run(const char *name, const std::vector<std::filesystem::path> &arguments)
    {
        return std::async(std::launch::async, [&] { return runHere(name, arguments); }).get();
    }

    /// Keeps what the program writes, and the reason where it fails or is missing.
    bool runHere(const char *name, const std::vector<std::filesystem::path> &arguments)
    {
        QStringList texts;
        for (const std::filesystem::path &argument : arguments) {
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

    const QStringList m_folders {
        QStringLiteral("/usr/sbin"), QStringLiteral("/sbin"), QStringLiteral("/usr/bin"), QStringLiteral("/bin")};
    TemporaryFolder m_folder;
    std::filesystem::path m_mountPoint;
    std::filesystem::path m_image;
    std::string m_output;
    std::string m_reason;
    bool m_mounted = false;
};
