// Ejecting against a stand-in of the disk service on a bus of the test's own.
#include "platform/Files.h"
#include "platform/MarluneError.h"
#include "platform/Volumes.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>

#include <future>
#include <memory>
#include <ostream>

#if defined(__SANITIZE_THREAD__)
// A second bus is started while Qt's bus thread lives; ThreadSanitizer would let no thread start after that fork.
extern "C" const char *__tsan_default_options() // NOLINT(bugprone-reserved-identifier): the sanitizer's own name
{
    return "die_after_fork=0";
}
#endif

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string unmounted = "Unmount sdb2 {} open=0";
const std::string ejected = "Eject iPod_1 {}";

/// One address for all tests of the process; the daemons behind it come and go.
class SystemBusAddress : public testing::Environment {
public:
    void SetUp() override
    {
        bus = std::make_unique<PrivateBus>();
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bus->address().c_str(), 1);
    }
    void TearDown() override { bus.reset(); }

    std::unique_ptr<PrivateBus> bus;
};
auto *const systemBus = static_cast<SystemBusAddress *>(testing::AddGlobalTestEnvironment(new SystemBusAddress));

class EjectTest : public testing::Test {
protected:
    void SetUp() override
    {
        dieWithThisProcess(m_service);
        std::filesystem::create_directory(m_mountPoint);
        systemBus->bus->start();
    }
    void TearDown() override
    {
        stopService();
        systemBus->bus->stop();
    }

    void startService(QStringList options = {})
    {
        options << QStringLiteral("--address") << QString::fromStdString(systemBus->bus->address())
                << QStringLiteral("--log") << QString::fromStdString(m_log.string())
                << QStringLiteral("--mount-point-file")
                << QString::fromStdString(m_folder.write("mount-point", m_mountPoint.native()).string());
        options.prepend(QStringLiteral(MARLUNE_SOURCE_DIR "/tests/support/udisks_stand_in.py"));
        m_service.start(QStringLiteral("/usr/bin/python3"), options);
        ASSERT_TRUE(m_service.waitForReadyRead(20'000)) << m_service.readAllStandardError().toStdString();
        ASSERT_EQ(m_service.readAllStandardOutput().trimmed(), "ready");
    }

    void stopService()
    {
        m_service.kill();
        m_service.waitForFinished();
    }

    /// The text of the failure, empty on success. On a thread without an event loop, as the program calls it.
    std::future<std::string> ejectLater(std::chrono::milliseconds patience = 20s)
    {
        return std::async(std::launch::async, [mountPoint = m_mountPoint, patience] {
            try {
                Volumes::eject(mountPoint, patience);
                return std::string();
            } catch (const MarluneError &error) {
                return error.message().toStdString();
            }
        });
    }
    std::string ejectNow(std::chrono::milliseconds patience = 20s) { return ejectLater(patience).get(); }

    [[nodiscard]] std::vector<std::string> calls() const
    {
        std::vector<std::string> lines;
        std::ifstream log(m_log);
        for (std::string line; std::getline(log, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_mountPoint = m_folder / "Zażółć \xFF IPOD"; // a label of FAT need not be UTF-8
    std::filesystem::path m_log = m_folder / "calls";
    QProcess m_service;
};

TEST_F(EjectTest, UnmountsTheAskedDiskAloneThenEjectsItsDrive)
{
    startService();
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted, ejected));
}

TEST_F(EjectTest, ATrailingSeparatorNamesTheSameDisk)
{
    startService();
    m_mountPoint += "/"; // after the service was told
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted, ejected));
}

TEST_F(EjectTest, ADiskWithoutADriveIsDoneWhenUnmounted)
{
    startService({QStringLiteral("--no-drive")});
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted));
}

TEST_F(EjectTest, ADiskThatAnotherProgramJustUnmountedIsStillEjected)
{
    startService({QStringLiteral("--unmount-error"), QStringLiteral("org.freedesktop.UDisks2.Error.NotMounted")});
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted, ejected));
}

struct RefusalRow {
    const char *step;
    const char *error;
    const char *reason; ///< what the text must say of the reason
};

void PrintTo(const RefusalRow &row, std::ostream *stream)
{
    *stream << row.step << ": " << row.error;
}

class EjectRefusal : public EjectTest, public testing::WithParamInterface<RefusalRow> { };

TEST_P(EjectRefusal, SaysWhyAndHowTheDiskIsLeftAndCallsNothingMore)
{
    const RefusalRow row = GetParam();
    const bool atUnmount = std::string_view(row.step) == "unmount";
    startService({QStringLiteral("--%1-error").arg(QLatin1StringView(row.step)), QLatin1StringView(row.error)});
    const std::string text = ejectNow();
    EXPECT_THAT(text, HasSubstr(row.reason));
    if (atUnmount) {
        EXPECT_THAT(text, testing::Not(HasSubstr("już odmontowany")));
        EXPECT_THAT(calls(), ElementsAre(unmounted));
    } else {
        EXPECT_THAT(text, HasSubstr("iPod jest już odmontowany, ale"));
        EXPECT_THAT(text, testing::Not(HasSubstr("nadal zamontowany")));
        EXPECT_THAT(calls(), ElementsAre(unmounted, ejected));
    }
}

#define UDISKS "org.freedesktop.UDisks2.Error."
#define DBUS "org.freedesktop.DBus.Error."

INSTANTIATE_TEST_SUITE_P(Errors, EjectRefusal,
    testing::Values(
        RefusalRow {"unmount", UDISKS "DeviceBusy", "używany przez inny program. Dysk jest nadal zamontowany"},
        RefusalRow {"unmount", UDISKS "NotAuthorized", "nie ma do tego uprawnień. Dysk jest nadal zamontowany"},
        RefusalRow {
            "unmount", UDISKS "NotAuthorizedCanObtain", "nie ma do tego uprawnień. Dysk jest nadal zamontowany"},
        RefusalRow {"unmount", UDISKS "NotAuthorizedDismissed", "hasło zostało zamknięte. Dysk jest nadal zamontowany"},
        RefusalRow {"unmount", UDISKS "AlreadyUnmounting", "inny program właśnie go odmontowuje"},
        RefusalRow {"unmount", UDISKS "Timedout", "Nie wiadomo, czy iPod został odmontowany"},
        RefusalRow {"unmount", UDISKS "Failed",
            "Dysk jest nadal zamontowany. Odmontuj go w menedżerze plików, zanim "
            "odłączysz iPoda. Odpowiedź usługi dysków: the service's own words"},
        RefusalRow {"unmount", DBUS "Spawn.ExecFailed", "usługa dysków UDisks2 nie jest zainstalowana lub nie działa"},
        RefusalRow {"eject", UDISKS "DeviceBusy", "inna partycja jego dysku"},
        RefusalRow {"eject", UDISKS "NotAuthorized", "nie ma do tego uprawnień"},
        RefusalRow {"eject", UDISKS "NotAuthorizedDismissed", "hasło zostało zamknięte"},
        RefusalRow {"eject", UDISKS "AlreadyUnmounting", "the service's own words"},
        RefusalRow {"eject", UDISKS "Timedout", "nie wiadomo, czy został wysunięty"},
        RefusalRow {"eject", UDISKS "Failed", "the service's own words"}));

struct SilenceRow {
    QStringList options;
    std::chrono::milliseconds patience;
    const char *text;
    std::size_t calls;
};

void PrintTo(const SilenceRow &row, std::ostream *stream)
{
    *stream << row.options.join(QLatin1Char(' ')).toStdString();
}

class EjectSilence : public EjectTest, public testing::WithParamInterface<SilenceRow> { };

TEST_P(EjectSilence, LeavesTheStateOpenAndCallsNothingMore)
{
    const SilenceRow &row = GetParam();
    startService(row.options);
    const auto start = std::chrono::steady_clock::now();
    const std::string text = ejectNow(row.patience);
    EXPECT_THAT(text, HasSubstr(row.text));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 15s);
    EXPECT_EQ(calls().size(), row.calls);
}

INSTANTIATE_TEST_SUITE_P(Cases, EjectSilence,
    testing::Values(
        SilenceRow {{QStringLiteral("--unmount-delay=30")}, 300ms, "Nie wiadomo, czy iPod został odmontowany", 1},
        SilenceRow {{QStringLiteral("--eject-delay=30")}, 300ms, "nie wiadomo, czy został wysunięty", 2},
        SilenceRow {{QStringLiteral("--unmount-exit")}, 20s, "Nie wiadomo, czy iPod został odmontowany", 1},
        SilenceRow {{QStringLiteral("--eject-exit")}, 20s, "nie wiadomo, czy został wysunięty", 2}));

TEST_F(EjectTest, ASlowDiskIsWaitedFor)
{
    startService({QStringLiteral("--unmount-delay=1"), QStringLiteral("--eject-delay=1")});
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted, ejected));
}

TEST_F(EjectTest, ABusWithoutTheServiceSaysSo)
{
    const std::string text = ejectNow();
    EXPECT_THAT(text, HasSubstr("usługa dysków UDisks2 nie jest zainstalowana lub nie działa"));
    EXPECT_THAT(text, HasSubstr("Dysk jest nadal zamontowany"));
}

TEST_F(EjectTest, ADiskThatTheServiceDoesNotKnowStaysMounted)
{
    startService();
    m_mountPoint += "-other";
    std::filesystem::create_directory(m_mountPoint);
    const std::string text = ejectNow();
    EXPECT_THAT(text, HasSubstr("nie zna dysku zamontowanego w „" + m_folder.path().string()));
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EjectTest, ADiskThatCannotBeFlushedIsNotUnmounted)
{
    startService();
    std::filesystem::remove(m_mountPoint);
    const std::string gone = ejectNow();
    m_folder.write(m_mountPoint.filename(), "no folder");
    const std::string unreadable = ejectNow();
    EXPECT_THAT(gone, HasSubstr("nie jest już zamontowany"));
    EXPECT_THAT(unreadable, HasSubstr("nie można otworzyć"));
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(EjectTest, ABusThatVanishedIsNamedAndOneThatCameBackIsUsed)
{
    startService();
    EXPECT_EQ(ejectNow(), "");
    stopService();
    systemBus->bus->stop();
    const std::string text = ejectNow();
    EXPECT_THAT(text, HasSubstr("brak połączenia z systemową magistralą D-Bus"));

    systemBus->bus->start();
    startService();
    EXPECT_EQ(ejectNow(), "");
    EXPECT_THAT(calls(), ElementsAre(unmounted, ejected, unmounted, ejected));
}

TEST_F(EjectTest, ABusThatDiesDuringTheUnmountEndsTheWait)
{
    startService({QStringLiteral("--unmount-delay=60")});
    auto ejecting = ejectLater(60s);
    while (calls().empty()) {
        ASSERT_EQ(ejecting.wait_for(10ms), std::future_status::timeout);
    }
    systemBus->bus->stop();
    ASSERT_EQ(ejecting.wait_for(15s), std::future_status::ready);
    EXPECT_THAT(ejecting.get(), HasSubstr("Nie wiadomo, czy iPod został odmontowany"));
}

} // namespace
