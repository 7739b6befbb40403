// A real exFAT disk for one test: an image file behind a loop device, mounted in a folder of the test's.
//
// Needs root, mkfs.exfat (exfatprogs), a loop device and a driver: FUSE's (exfat-fuse) or the kernel's. Where one of
// them is missing, available() is false and reason() says what; a test then skips. Whatever happens the disk is
// unmounted with the object; the loop device goes with its last user.
#pragma once

#include "support/TemporaryFolder.h"

#include <QProcess>
#include <QStandardPaths>

#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>
#include <thread>

class ExfatVolume {
public:
    /// Makes the folder `mountPoint` if need be and mounts an empty disk of `bytes` there.
    explicit ExfatVolume(std::filesystem::path mountPoint, std::int64_t bytes = 64 << 20)
        : m_mountPoint(std::move(mountPoint))
        , m_image(m_folder / "image")
    {
        if (::geteuid() != 0) {
            m_reason = "mounting needs root";
        } else if (const QString format = program(QStringLiteral("mkfs.exfat")); format.isEmpty()) {
            m_reason = "no mkfs.exfat";
        } else {
            m_folder.write("image", {});
            std::filesystem::resize_file(m_image, std::uintmax_t(bytes)); // sparse
            if (runProgram(format, {QString::fromStdString(m_image.string())}, "mkfs.exfat")) {
                mount();
            }
        }
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
        std::string device;
        const int loop = attachLoop(device);
        if (loop < 0) {
            return false;
        }
        std::error_code ignored;
        std::filesystem::create_directories(m_mountPoint, ignored);
        const QString driver = program(QStringLiteral("mount.exfat-fuse"));
        if (!driver.isEmpty() && ::access("/dev/fuse", R_OK | W_OK) == 0) {
            m_mounted = runProgram(driver,
                {QString::fromStdString(device), QString::fromLocal8Bit(m_mountPoint.c_str())}, "mount.exfat-fuse");
        } else if (::mount(device.c_str(), m_mountPoint.c_str(), "exfat", MS_NOSUID | MS_NODEV, nullptr) == 0) {
            m_mounted = true;
        } else {
            m_reason = "neither exfat-fuse nor the kernel's exFAT: " + std::generic_category().message(errno);
        }
        ::close(loop); // from here the mount alone keeps the loop device
        return m_mounted;
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
    static QString program(const QString &name)
    {
        return QStandardPaths::findExecutable(
            name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin"), QStringLiteral("/usr/bin")});
    }

    bool runProgram(const QString &program, const QStringList &arguments, const std::string &name)
    {
        QProcess process;
        process.start(program, arguments);
        if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
            return true;
        }
        m_reason = name + ": " + process.readAllStandardError().trimmed().toStdString();
        return false;
    }

    /// The open loop device, which lets go of the image once nobody has it open or mounted; -1 if there is none.
    int attachLoop(std::string &device)
    {
        const int image = ::open(m_image.c_str(), O_RDWR | O_CLOEXEC);
        const int control = ::open("/dev/loop-control", O_RDWR | O_CLOEXEC);
        int loop = -1;
        for (int attempt = 0; attempt < 10 && loop < 0; ++attempt) {
            const int number = ::ioctl(control, LOOP_CTL_GET_FREE);
            if (number < 0) {
                break;
            }
            device = "/dev/loop" + std::to_string(number);
            loop = ::open(device.c_str(), O_RDWR | O_CLOEXEC);
            loop_config config {};
            config.fd = std::uint32_t(image);
            config.info.lo_flags = LO_FLAGS_AUTOCLEAR;
            if (loop >= 0 && ::ioctl(loop, LOOP_CONFIGURE, &config) != 0) {
                ::close(loop); // another process took it meanwhile
                loop = -1;
            }
        }
        if (loop < 0) {
            m_reason = "no loop device: " + std::generic_category().message(errno);
        }
        ::close(control);
        ::close(image);
        return loop;
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_mountPoint;
    std::filesystem::path m_image;
    std::string m_reason;
    bool m_mounted = false;
};
