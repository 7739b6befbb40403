// Opening and revealing, with a file manager of the test's own on a private session bus.
#include "platform/desktop/Desktop.h"
#include "platform/desktop/TerminationRequests.h"
#include "support/PrivateBus.h"
#include "support/Testing.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDesktopServices>
#include <QUrl>

#include <csignal>

namespace {

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
        connection.send(refuses ? message.createErrorReply(QDBusError::Failed, u"no window"_s) : message.createReply());
        return true;
    }

    bool refuses = false;
    QStringList shown;
};

/// Takes the place of the desktop's own programs for files.
class DesktopTest : public QObject, public testing::Test {
    Q_OBJECT

protected:
    void SetUp() override
    {
        m_bus.start();
        ::setenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().c_str(), 1);
        QDesktopServices::setUrlHandler(u"file"_s, this, "take");
    }
    void TearDown() override { QDesktopServices::unsetUrlHandler(u"file"_s); }

    Q_INVOKABLE void take(const QUrl &url) { m_opened = url.toEncoded().toStdString(); }

    bool revealingOpensTheFolder()
    {
        m_opened.clear();
        Desktop::reveal({m_item});
        return eventually([this] { return m_opened == m_folderUri; });
    }

    PrivateBus m_bus;
    const fs::path m_item = "/music of me/100% #1?;'\xFF\"ż.flac";
    const std::string m_folderUri = "file:///music%20of%20me";
    const std::string m_itemUri = m_folderUri + "/100%25%20%231%3F%3B%27%FF%22%C5%BC.flac";
    std::string m_opened;
};

TEST_F(DesktopTest, RevealsInTheFileManagerAndElseOpensTheFolder)
{
    EXPECT_TRUE(Desktop::open(m_item));
    EXPECT_EQ(m_opened, m_itemUri);
    EXPECT_TRUE(revealingOpensTheFolder()); // no file manager is there

    FileManager manager;
    const QString name = u"manager"_s;
    QDBusConnection connection = QDBusConnection::connectToBus(QString::fromStdString(m_bus.address()), name);
    ASSERT_TRUE(connection.registerVirtualObject(u"/org/freedesktop/FileManager1"_s, &manager));
    ASSERT_TRUE(connection.registerService(u"org.freedesktop.FileManager1"_s));
    m_opened.clear();
    Desktop::reveal({m_item, "/a/1", "/b/1", "/c/1", "/d/1", "/e/1", "/a/2"}); // a window for each of five folders
    EXPECT_TRUE(eventually([&] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown.join(u' ').toStdString(),
        m_itemUri + " file:///a/1 file:///b/1 file:///c/1 file:///d/1 file:///a/2");
    EXPECT_EQ(m_opened, "");

    manager.refuses = true;
    EXPECT_TRUE(revealingOpensTheFolder());
    m_bus.stop();
    EXPECT_TRUE(eventually([] { return !QDBusConnection::sessionBus().isConnected(); }));
    EXPECT_TRUE(revealingOpensTheFolder());
    QDBusConnection::disconnectFromBus(name);
}

} // namespace

TEST(TerminationRequests, areToldOnceAndOnlyALaterInterruptEndsAtOnce)
{
    int told = 0;
    const TerminationRequests requests;
    QObject::connect(&requests, &TerminationRequests::requested, &requests, [&] { ++told; });
    std::raise(SIGTERM);
    std::raise(SIGHUP);
    ASSERT_TRUE(eventually([&] { return told == 1; }));
    std::raise(SIGHUP);
    std::raise(SIGINT);
    struct sigaction interrupt = {};
    ASSERT_TRUE(eventually([&] { return ::sigaction(SIGINT, nullptr, &interrupt), interrupt.sa_handler == SIG_DFL; }));
    EXPECT_EQ(told, 1);
}

#include "DesktopTest.moc"
