// A D-Bus daemon of one test's own, with nobody on it. Its address stays the same when it is stopped and started
// again, because libdbus reads the addresses of the well-known buses once in a process.
#pragma once

#include "support/TemporaryFolder.h"

#include <QProcess>

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>
#include <string>

/// For a process that must not outlive the test, even one that crashes. One with children of its own is asked to end.
inline void dieWithThisProcess(QProcess &process, int by = SIGKILL)
{
    process.setChildProcessModifier([by] { ::prctl(PR_SET_PDEATHSIG, by); });
}

class PrivateBus {
public:
    PrivateBus()
    {
        dieWithThisProcess(m_daemon);
        m_configuration = m_folder.write("bus.conf",
            "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
            "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
            "<busconfig><listen>"
                + address()
                + "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"false\"/>"
                  "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n");
    }
    ~PrivateBus() { stop(); }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    [[nodiscard]] std::string address() const { return "unix:path=" + (m_folder / "bus").string(); }

    /// Returns when the bus takes connections; throws where there is no dbus-daemon.
    void start()
    {
        m_daemon.start(u"dbus-daemon"_s,
            {u"--nofork"_s, u"--print-address"_s,
                u"--config-file="_s + QString::fromStdString(m_configuration.string())});
        if (!m_daemon.waitForReadyRead(10'000)) {
            throw std::runtime_error("no dbus-daemon: " + m_daemon.readAllStandardError().toStdString());
        }
    }

    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    TemporaryFolder m_folder;
    fs::path m_configuration;
    QProcess m_daemon;
};
