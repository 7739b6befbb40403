// Requests to a server of the test's own: what comes back, and what ends them.
#include "platform/web/Http.h"

#include "platform/tasks/Background.h"

#include "support/CannedServer.h"
#include "support/Testing.h"

#include <gmock/gmock.h>
namespace {

using namespace std::chrono_literals;
using Then = CannedServer::Then;

struct Fetched {
    bool done = false;
    int status = 0;
    std::string text; ///< the body's, or why there is no answer
};

QCoro::Task<> run(Http::Request request, QObject *owner, Fetched *outcome)
{
    try {
        const Http::Response response = co_await Http::get(request, *owner);
        outcome->status = response.status;
        outcome->text = response.body ? response.body->toStdString() : "too large";
    } catch (const std::exception &) {
        outcome->text = describeFailure(std::current_exception()).toStdString();
    }
    outcome->done = true;
}

/// Long waits, because server and client share a thread that may be held up.
Fetched fetch(const QUrl &url, Http::Redirects redirects = Http::Redirects::SameOrigin,
    std::int64_t maxBodyBytes = 1000, std::chrono::milliseconds silence = 10s)
{
    QObject owner;
    Fetched outcome;
    run({.url = url, .maxBodyBytes = maxBodyBytes, .silence = silence, .timeout = 4 * silence, .redirects = redirects},
        &owner, &outcome);
    EXPECT_TRUE(eventually([&] { return outcome.done; }));
    return outcome;
}

} // namespace

TEST(Http, bringsAnyAnswerOrSaysWhyThereIsNone)
{
    const std::string silent = "Serwer nie odpowiada.";
    const std::string cut = "Połączenie z serwerem zostało przerwane.";
    const QByteArray most(1000, 'x');
    const std::tuple<CannedServer::Answer, int, std::string> rows[] = {
        {CannedServer::answer("200 OK"), 200, ""},
        {{"HTTP/1.1 200 OK\r\n\r\nup to the end"}, 200, "up to the end"},
        {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"}, 200, "abcde"},
        {CannedServer::answer("400 Bad Request", "what"), 400, "what"},
        {CannedServer::answer("401 Unauthorized", "who", "WWW-Authenticate: Basic realm=\"x\"\r\n"), 401, "who"},
        {CannedServer::answer("200 OK", most), 200, most.toStdString()},
        {CannedServer::answer("503 Busy", most + 'x'), 503, "too large"},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 50000000\r\n\r\n", 50'000'000}, 200, "too large"},
        {{"", 0, Then::Stay}, 0, silent},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nab", 0, Then::Stay}, 0, silent},
        {{"HTTP/1.1 200 OK\r\n\r\n", 0, Then::GoOn}, 0, silent},
        {{""}, 0, cut},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nab"}, 0, cut},
        {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nab"}, 0, cut},
    };
    for (const auto &[answer, expectedStatus, text] : rows) {
        const CannedServer server({answer});
        const Fetched outcome
            = fetch(server.root(), Http::Redirects::SameOrigin, 1000, text == silent ? 300ms : 10'000ms);
        EXPECT_EQ(std::pair(outcome.status, outcome.text), std::pair(expectedStatus, text));
        EXPECT_LT(server.sent, 10'000'000) << "what the system buffers for both sides";
    }
    const CannedServer large({{"HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n", 5'000'000}});
    EXPECT_EQ(fetch(large.root(), Http::Redirects::SameOrigin, 5'000'000).text, std::string(5'000'000, 'x'));
    const QUrl closed = CannedServer({}).root();
    EXPECT_EQ(fetch(closed).text, "Nie można połączyć się z serwerem. Sprawdź połączenie z internetem.");
    for (const char *url : {"", "file:///etc/passwd", "http://", "/relative", "ftp://127.0.0.1/"}) {
        EXPECT_EQ(fetch(QUrl(QString::fromLatin1(url))).text, "Nieprawidłowy adres serwera.") << url;
    }
}

TEST(Http, tellsNothingOfTheUser)
{
    const CannedServer server({CannedServer::answer("200 OK", "", "Set-Cookie: id=1\r\n")});
    for (const std::size_t time : {0U, 1U}) {
        fetch(server.root().resolved(QUrl(u"/a%20b?c=%C4%85"_s)));
        EXPECT_EQ(server.asked.at(time).target, "/a%20b?c=%C4%85");
        QList<QByteArray> lines = server.asked[time].head.trimmed().replace("\r\n", "\n").split('\n');
        lines.removeFirst();
        EXPECT_THAT(lines,
            testing::UnorderedElementsAre("User-Agent: Marlune", "Accept-Language: *", "Accept-Encoding: identity",
                "Connection: Keep-Alive", "Host: 127.0.0.1:" + QByteArray::number(server.port())));
    }
}

TEST(Http, followsRedirectsAsFarAsAllowed)
{
    const std::string refused = "Serwer odsyła pod niedozwolony adres.";
    const CannedServer other({CannedServer::answer("200 OK", "other")});
    const auto to = [](const QByteArray &address) {
        return CannedServer::answer("302 Found", "", "Location: " + address + "\r\n");
    };
    const CannedServer near({to("/b"), CannedServer::answer("200 OK", "near")});
    EXPECT_EQ(fetch(near.root()).text, "near");
    EXPECT_EQ(near.asked.at(1).target, "/b");
    const CannedServer away({to(other.root().toEncoded())});
    EXPECT_EQ(fetch(away.root()).text, refused);
    EXPECT_TRUE(other.asked.empty());
    EXPECT_EQ(fetch(away.root(), Http::Redirects::AnyHost).text, "other");
    const CannedServer file({to("file:///etc/hostname")});
    EXPECT_EQ(fetch(file.root(), Http::Redirects::AnyHost).text, refused);
    const CannedServer loop({to("/")});
    EXPECT_EQ(fetch(loop.root()).text, refused);
    EXPECT_EQ(loop.asked.size(), 6U);
}

namespace {

/// Makes `address` the desktop's proxy. A desktop's own settings can come before the variable.
void setProxy(const QByteArray &address)
{
    for (const char *name : {"no_proxy", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "GNOME_DESKTOP_SESSION_ID"}) {
        qunsetenv(name);
    }
    qputenv("http_proxy", address);
}

} // namespace

TEST(Http, goesThroughTheDesktopsProxyButNotToThisComputer)
{
    const QUrl far(u"http://marlune.invalid/x"_s);
    auto proxy = std::make_unique<CannedServer>(std::vector {CannedServer::answer("200 OK", "by proxy")});
    const CannedServer other({CannedServer::answer("200 OK", "by another")});
    setProxy(proxy->root().toEncoded());
    EXPECT_EQ(fetch(far).text, "by proxy");
    ASSERT_EQ(proxy->asked.size(), 1U);
    EXPECT_EQ(proxy->asked[0].target, far.toEncoded());
    EXPECT_EQ(fetch(other.root()).text, "by another");
    EXPECT_EQ(other.asked.at(0).target, "/");
    setProxy(other.root().toEncoded());
    EXPECT_EQ(fetch(far).text, "by proxy"); // asked once for a place,
    proxy.reset();
    EXPECT_THAT(fetch(far).text, testing::StartsWith("Nie można"));
    EXPECT_EQ(fetch(far).text, "by another"); // and again once that way is closed
    qunsetenv("http_proxy");
}

TEST(Http, endsInTimeWhereTheLookupOfAProxyHangs)
{
    // A place that would tell the proxy, and does not answer.
    auto script = std::make_unique<CannedServer>(std::vector<CannedServer::Answer> {{"", 0, Then::Stay}});
    setProxy("pac+" + script->root().toEncoded() + "/x");
    const QUrl far(u"http://hanging.invalid/x"_s);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(fetch(far, Http::Redirects::SameOrigin, 1000, 500ms).text, "Serwer nie odpowiada.");
    }
    EXPECT_EQ(script->asked.size(), 1U);
    EXPECT_TRUE(BackgroundJobs::drain(0s)); // it takes no thread from anyone
    script.reset();
    EXPECT_THAT(fetch(far).text, testing::StartsWith("Nie można")); // the late answer is used
    qunsetenv("http_proxy");
}
