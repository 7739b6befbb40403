// Another disk at the place of a folder: one in memory, mounted over it where nobody outside the test sees it.
//
// Needs a mount namespace of its own, which root has for the asking and a plain user where the system lets them make
// user namespaces. Where that is refused, available() is false and a test skips.
#pragma once

#include "Names.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>

class AnotherDisk {
public:
    /// Moves the test's process, which must have one thread, into namespaces of its own.
    [[nodiscard]] static bool available()
    {
        static const bool made = enterNamespace();
        return made;
    }

    explicit AnotherDisk(fs::path place)
        : m_place(std::move(place))
        , m_mounted(::mount("disk", m_place.c_str(), "tmpfs", 0, "size=1m") == 0)
    {
    }
    /// What was at the place before comes back.
    ~AnotherDisk() { m_mounted ? ::umount2(m_place.c_str(), MNT_DETACH) : 0; }
    AnotherDisk(const AnotherDisk &) = delete;
    AnotherDisk &operator=(const AnotherDisk &) = delete;

    [[nodiscard]] bool mounted() const { return m_mounted; }

private:
    static bool enterNamespace()
    {
        const uid_t user = ::getuid();
        const gid_t group = ::getgid();
        if (::unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        if (user != 0) {
            std::ofstream("/proc/self/setgroups") << "deny";
            std::ofstream("/proc/self/gid_map") << "0 " << group << " 1\n";
            std::ofstream("/proc/self/uid_map") << "0 " << user << " 1\n";
        }
        return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }

    fs::path m_place;
    bool m_mounted;
};
