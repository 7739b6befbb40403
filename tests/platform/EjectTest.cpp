// Ejecting against a stand-in of the disk service on a bus of the test's own.
#include "platform/MarluneError.h"
#include "platform/volumes/Volumes.h"
#include "support/PrivateBus.h"
#include "support/Testing.h"

#include <future>
#include <gmock/gmock.h>

#if defined(__SANITIZE_THREAD__)
// A second bus is started while Qt's bus thread lives; ThreadSanitizer would let no thread start after that fork.
extern "C" const char *__tsan_default_options() // NOLINT(bugprone-reserved-identifier): the sanitizer's own name
{
    return "die_after_fork=0";
}
#endif

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::HasSubstr;

const std::string unmounted = "Unmount sdb2 {} open=0\n";
const std::string ejected = unmounted + "Eject iPod_1 {}\n";

class EjectTest : public testing::Test {
protected:
    /// One address for all tests of the process; the daemons behind it come and go.
    static void SetUpTestSuite()
    {
        s_bus = std::make_unique<PrivateBus>();
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", s_bus->address().c_str(), 1);
    }
    static void TearDownTestSuite() { s_bus.reset(); }

    void SetUp() override
    {
        dieWithThisProcess(m_service);
        fs::create_directory(m_mountPoint);
        s_bus->start();
    }
    void TearDown() override
    {
        m_service.kill();
        m_service.waitForFinished();
        s_bus->stop();
    }

    void startService(const std::string &options = {})
    {
        m_service.kill(); // that of the row before
        m_service.waitForFinished();
        fs::remove(m_log);
        const auto place = m_folder.write("mount-point", m_mountPoint.native());
        QStringList arguments = QString::fromStdString(options).split(u' ', Qt::SkipEmptyParts);
        arguments.prepend(QStringLiteral(MARLUNE_SOURCE_DIR "/tests/support/udisks_stand_in.py"));
        for (const std::string &argument :
            {"--address=" + s_bus->address(), "--log=" + m_log.string(), "--mount-point-file=" + place.string()}) {
            arguments.append(QString::fromStdString(argument));
        }
        m_service.start(u"/usr/bin/python3"_s, arguments);
        ASSERT_TRUE(m_service.waitForReadyRead(20'000)) << m_service.readAllStandardError().toStdString();
        ASSERT_EQ(m_service.readAllStandardOutput().trimmed(), "ready");
    }

    /// The text of the failure, empty on success. On a thread without an event loop, as the program calls it.
    std::string ejectNow(std::chrono::milliseconds timeout = 20s)
    {
        const auto eject = [&] { return messageOf([&] { Volumes::eject(m_mountPoint, timeout); }); };
        return std::async(std::launch::async, eject).get();
    }
    /// What the service was called for, a line each.
    [[nodiscard]] std::string calls() const { return fs::exists(m_log) ? fileBytes(m_log) : ""; }

    inline static std::unique_ptr<PrivateBus> s_bus;
    TemporaryFolder m_folder;
    fs::path m_mountPoint = m_folder / "Zażółć \xFF IPOD"; // a label of FAT need not be UTF-8
    fs::path m_log = m_folder / "calls";
    QProcess m_service;
};

TEST_F(EjectTest, UnmountsTheAskedDiskAloneThenEjectsItsDrive)
{
    for (const auto &[options, expected] : {std::pair("", ejected), std::pair("--no-drive", unmounted),
             std::pair("--unmount-error=org.freedesktop.UDisks2.Error.NotMounted", ejected),
             std::pair("--unmount-delay=1 --eject-delay=1", ejected)}) {
        startService(options);
        EXPECT_EQ(ejectNow(), "") << options;
        EXPECT_EQ(calls(), expected) << options;
    }
    startService();
    m_mountPoint += "/"; // after the service was told
    EXPECT_EQ(ejectNow(), "");
    EXPECT_EQ(calls(), ejected);
}

TEST_F(EjectTest, ARefusalSaysWhyAndHowTheDiskIsLeftAndCallsNothingMore)
{
    const std::string service = "org.freedesktop.UDisks2.Error.";
    const std::tuple<std::string, std::string, const char *> rows[] = {
        {"unmount", service + "DeviceBusy", "używany przez inny program. Dysk jest nadal zamontowany"},
        {"unmount", service + "NotAuthorizedCanObtain", "nie ma do tego uprawnień. Dysk jest nadal zamontowany"},
        {"unmount", service + "NotAuthorizedDismissed", "hasło zostało zamknięte. Dysk jest nadal zamontowany"},
        {"unmount", service + "AlreadyUnmounting", "inny program właśnie go odmontowuje"},
        {"unmount", service + "Timedout", "Nie wiadomo, czy iPod został odmontowany"},
        {"unmount", service + "Failed", "Odpowiedź usługi dysków: the service's own words"},
        {"unmount", "org.freedesktop.DBus.Error.Spawn.ExecFailed", "UDisks2 nie jest zainstalowana lub nie działa"},
        {"eject", service + "DeviceBusy", "inna partycja jego dysku"},
        {"eject", service + "NotAuthorized", "nie ma do tego uprawnień"},
        {"eject", service + "AlreadyUnmounting", "the service's own words"},
        {"eject", service + "Timedout", "nie wiadomo, czy został wysunięty"},
    };
    for (const auto &[step, error, reason] : rows) {
        startService("--" + step + "-error=" + error);
        const std::string text = ejectNow();
        EXPECT_THAT(text, HasSubstr(reason)) << step << error;
        EXPECT_EQ(text.find("iPod jest już odmontowany, ale") == 0, step == "eject") << text;
        EXPECT_EQ(calls(), step == "eject" ? ejected : unmounted) << error;
    }
}

TEST_F(EjectTest, SilenceLeavesTheStateOpenAndCallsNothingMore)
{
    for (const auto &[step, expected] : {std::pair("--unmount"s, unmounted), std::pair("--eject"s, ejected)}) {
        for (const auto &[silence, timeout] : {std::pair("-delay=30", 2'000ms), std::pair("-exit", 20'000ms)}) {
            startService(step + silence);
            const auto start = std::chrono::steady_clock::now();
            EXPECT_THAT(ejectNow(timeout), testing::ContainsRegex("[Nn]ie wiadomo, czy")) << step << silence;
            EXPECT_LT(std::chrono::steady_clock::now() - start, 15s);
            EXPECT_TRUE(eventually([&] { return calls() == expected; })) << step << silence << calls();
        }
    }
}

TEST_F(EjectTest, ADiskThatCannotBeFlushedOrFoundIsNotUnmounted)
{
    EXPECT_THAT(ejectNow(), HasSubstr("UDisks2 nie jest zainstalowana lub nie działa. Dysk jest nadal zamontowany"));
    startService();
    fs::remove(m_mountPoint);
    EXPECT_THAT(ejectNow(), HasSubstr("nie jest już zamontowany"));
    m_folder.write(m_mountPoint.filename(), "no folder");
    EXPECT_THAT(ejectNow(), HasSubstr("nie można otworzyć"));
    m_mountPoint += "-other";
    fs::create_directory(m_mountPoint);
    EXPECT_THAT(ejectNow(), HasSubstr("nie zna dysku zamontowanego w „" + m_folder.path().string()));
    EXPECT_EQ(calls(), "");
}

TEST_F(EjectTest, ABusThatVanishedIsNamedAndOneThatCameBackIsUsed)
{
    s_bus->stop();
    EXPECT_THAT(ejectNow(), HasSubstr("brak połączenia z systemową magistralą D-Bus"));
    s_bus->start();
    startService();
    EXPECT_EQ(ejectNow(), "");
}

} // namespace
