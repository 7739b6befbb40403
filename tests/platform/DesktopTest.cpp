// Opening and revealing, with a file manager of the test's own on a private session bus.
#include "platform/Desktop.h"
#include "support/Eventually.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDesktopServices>
#include <QUrl>

#include <cstdlib>
#include <memory>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileManager : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.interface() != QLatin1StringView("org.freedesktop.FileManager1")
            || message.member() != QLatin1StringView("ShowItems") || message.signature() != QLatin1StringView("ass")) {
            return false;
        }
        shown = message.arguments().constFirst().toStringList();
        connection.send(refuses ? message.createErrorReply(QDBusError::Failed, QStringLiteral("no window"))
                                : message.createReply());
        return true;
    }

    bool refuses = false;
    QStringList shown;
};

/// Takes the place of the desktop's own programs for files.
class Opener : public QObject {
    Q_OBJECT

public:
    Opener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "take"); }
    ~Opener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    Q_INVOKABLE void take(const QUrl &url) { opened.push_back(url.toEncoded().toStdString()); }

    std::vector<std::string> opened;
};

class DesktopTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_bus = std::make_unique<PrivateBus>();
        s_bus->start();
        ::setenv("DBUS_SESSION_BUS_ADDRESS", s_bus->address().c_str(), 1);
    }
    static void TearDownTestSuite() { s_bus.reset(); }

    void SetUp() override
    {
        ASSERT_TRUE(m_connection.registerVirtualObject(QStringLiteral("/org/freedesktop/FileManager1"), &m_manager));
    }
    void TearDown() override { QDBusConnection::disconnectFromBus(QStringLiteral("manager")); }

    void startManager() { ASSERT_TRUE(m_connection.registerService(QStringLiteral("org.freedesktop.FileManager1"))); }

    inline static std::unique_ptr<PrivateBus> s_bus;
    const std::filesystem::path m_item = "/music of me/100% #1?;'\xFF\"ż.flac";
    const std::string m_folderUri = "file:///music%20of%20me";
    const std::string m_itemUri = m_folderUri + "/100%25%20%231%3F%3B%27%FF%22%C5%BC.flac";
    FileManager m_manager;
    Opener m_opener;
    QDBusConnection m_connection
        = QDBusConnection::connectToBus(QString::fromStdString(s_bus->address()), QStringLiteral("manager"));
};

TEST_F(DesktopTest, OpensAnyNameByItsBytes)
{
    EXPECT_TRUE(Desktop::open(m_item));
    EXPECT_THAT(m_opener.opened, ElementsAre(m_itemUri));
}

TEST_F(DesktopTest, RevealsTheItemItselfInTheFileManager)
{
    startManager();
    Desktop::reveal(m_item);
    EXPECT_TRUE(eventually([&] { return !m_manager.shown.isEmpty(); }));
    EXPECT_EQ(m_manager.shown, QStringList {QString::fromStdString(m_itemUri)});
    EXPECT_THAT(m_opener.opened, IsEmpty());
}

TEST_F(DesktopTest, OpensTheFolderWhereTheFileManagerRefuses)
{
    startManager();
    m_manager.refuses = true;
    Desktop::reveal(m_item);
    EXPECT_TRUE(eventually([&] { return !m_opener.opened.empty(); }));
    EXPECT_THAT(m_opener.opened, ElementsAre(m_folderUri));
}

TEST_F(DesktopTest, OpensTheFolderWhereThereIsNoFileManager)
{
    Desktop::reveal(m_item);
    EXPECT_TRUE(eventually([&] { return !m_opener.opened.empty(); }));
    EXPECT_THAT(m_opener.opened, ElementsAre(m_folderUri));
}

// In a child process, since the connection to the session bus is made once in a process.
TEST_F(DesktopTest, OpensTheFolderWhereThereNeverWasASessionBus)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto revealWithoutBus = [this] {
        s_bus->stop();
        Desktop::reveal(m_item);
        return eventually([&] { return m_opener.opened == std::vector {m_folderUri}; });
    };
    EXPECT_EXIT(std::_Exit(revealWithoutBus() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// The last one, since the process has one session bus for good.
TEST_F(DesktopTest, OpensTheFolderWhereTheSessionBusIsGone)
{
    startManager();
    s_bus->stop();
    EXPECT_TRUE(eventually([] { return !QDBusConnection::sessionBus().isConnected(); }));
    Desktop::reveal(m_item);
    EXPECT_TRUE(eventually([&] { return !m_opener.opened.empty(); }));
    EXPECT_THAT(m_opener.opened, ElementsAre(m_folderUri));
}

} // namespace

#include "DesktopTest.moc"
