// Requests to a server of the test's own: what comes back, and what ends them.
#include "platform/Http.h"

#include "support/CannedServer.h"
#include "support/Eventually.h"
#include "support/Messages.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using Then = CannedServer::Then;

struct Outcome {
    bool done = false;
    Http::Response response;
    std::string failure;

    [[nodiscard]] std::string body() const { return response.body ? response.body->toStdString() : "none"; }
};

QCoro::Task<> run(Http::Request request, QObject *owner, Outcome *outcome)
{
    try {
        outcome->response = co_await Http::get(request, *owner);
    } catch (const std::exception &) {
        outcome->failure = describeFailure(std::current_exception()).toStdString();
    }
    outcome->done = true;
}

Outcome fetch(const Http::Request &request)
{
    QObject owner;
    Outcome outcome;
    run(request, &owner, &outcome);
    EXPECT_TRUE(eventually([&] { return outcome.done; }));
    return outcome;
}

Outcome fetch(const CannedServer &server, const char *target = "/")
{
    return fetch({.url = server.root().resolved(QUrl(QString::fromLatin1(target))), .largestBody = 1000});
}

std::set<QByteArray> headers(const QByteArray &head)
{
    const QList<QByteArray> lines = head.trimmed().replace("\r\n", "\n").split('\n');
    return {lines.begin() + 1, lines.end()};
}

} // namespace

TEST(Http, bringsAnyAnswerAndTellsNothingOfTheUser)
{
    const std::pair<CannedServer::Answer, std::pair<int, std::string>> rows[] = {
        {CannedServer::answer("200 OK", "body"), {200, "body"}},
        {CannedServer::answer("200 OK"), {200, ""}},
        {{"HTTP/1.1 200 OK\r\n\r\nup to the end"}, {200, "up to the end"}},
        {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"}, {200, "abcde"}},
        {CannedServer::answer("404 Not Found", "sorry"), {404, "sorry"}},
        {CannedServer::answer("401 Unauthorized", "who", "WWW-Authenticate: Basic realm=\"x\"\r\n"), {401, "who"}},
        {CannedServer::answer("503 Service Unavailable", "later"), {503, "later"}},
    };
    for (const auto &[answer, expected] : rows) {
        const CannedServer server({answer});
        const Outcome outcome = fetch(server, "/a%20b?c=%C4%85");
        EXPECT_EQ(std::pair(outcome.response.status, outcome.body()), expected) << outcome.failure;
        ASSERT_EQ(server.asked.size(), 1U);
        EXPECT_EQ(server.asked[0].target, "/a%20b?c=%C4%85");
        EXPECT_EQ(headers(server.asked[0].head),
            (std::set<QByteArray> {"User-Agent: Marlune", "Accept-Language: *", "Accept-Encoding: identity",
                "Connection: Keep-Alive", "Host: 127.0.0.1:" + QByteArray::number(server.port())}));
    }
    const CannedServer server({CannedServer::answer("200 OK", "", "Set-Cookie: id=1\r\n")});
    fetch(server);
    fetch(server);
    ASSERT_EQ(server.asked.size(), 2U);
    EXPECT_FALSE(server.asked[1].head.contains("Cookie"));
}

TEST(Http, saysWhyThereIsNoAnswer)
{
    const std::string silent = "Serwer nie odpowiada.";
    const std::string cut = "Połączenie z serwerem zostało przerwane.";
    const std::pair<CannedServer::Answer, std::string> rows[] = {
        {{"", 0, Then::Stay}, silent},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nab", 0, Then::Stay}, silent},
        {{"HTTP/1.1 200 OK\r\n\r\n", 0, Then::GoOn}, silent},
        {{""}, cut},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nab"}, cut},
        {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nab"}, cut},
    };
    for (const auto &[answer, text] : rows) {
        const CannedServer server({answer});
        const Outcome outcome = fetch({.url = server.root(),
            .largestBody = 1000,
            .silence = std::chrono::milliseconds(300),
            .patience = std::chrono::milliseconds(600)});
        EXPECT_EQ(outcome.failure, text) << answer.bytes.toStdString();
    }
    const QUrl closed = CannedServer({}).root();
    EXPECT_EQ(fetch({.url = closed}).failure, "Nie można połączyć się z serwerem. Sprawdź połączenie z internetem.");
    for (const char *url : {"", "file:///etc/passwd", "http://", "/relative", "ftp://127.0.0.1/"}) {
        EXPECT_EQ(fetch({.url = QUrl(QString::fromLatin1(url))}).failure, "Nieprawidłowy adres serwera.") << url;
    }
}

TEST(Http, holdsNoMoreThanAllowed)
{
    const CannedServer exact({CannedServer::answer("200 OK", QByteArray(1000, 'x'))});
    EXPECT_EQ(fetch(exact).body().size(), 1000U);
    const CannedServer more({CannedServer::answer("503 Busy", QByteArray(1001, 'x'))});
    EXPECT_EQ(fetch(more).response.status, 503);
    EXPECT_FALSE(fetch(more).response.body);

    const CannedServer endless({{"HTTP/1.1 200 OK\r\nContent-Length: 50000000\r\n\r\n", 50'000'000}});
    EXPECT_EQ(fetch(endless).response.status, 200);
    EXPECT_LT(endless.sent, 10'000'000); // what the system buffers for both sides
    const CannedServer large({{"HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n", 5'000'000}});
    EXPECT_EQ(fetch({.url = large.root(), .largestBody = 5'000'000}).body(), std::string(5'000'000, 'x'));
}

TEST(Http, followsRedirectsAsFarAsAllowed)
{
    const std::string refused = "Serwer odsyła pod niedozwolony adres.";
    const CannedServer other({CannedServer::answer("200 OK", "other")});
    const auto to = [](const QByteArray &address) {
        return CannedServer::answer("302 Found", "", "Location: " + address + "\r\n");
    };
    const CannedServer near({to("/b"), CannedServer::answer("200 OK", "near")});
    EXPECT_EQ(fetch(near, "/a").body(), "near");
    EXPECT_EQ(near.asked.at(1).target, "/b");
    const CannedServer away({to(other.root().toEncoded())});
    EXPECT_EQ(fetch(away).failure, refused);
    EXPECT_TRUE(other.asked.empty());
    EXPECT_EQ(fetch({.url = away.root(), .largestBody = 1000, .redirects = Http::Redirects::AnyHost}).body(), "other");
    const CannedServer loop({to("/")});
    EXPECT_EQ(fetch(loop).failure, refused);
    EXPECT_EQ(loop.asked.size(), 6U);
}

TEST(Http, endsWithItsOwner)
{
    const CannedServer server({{"HTTP/1.1 200 OK\r\n\r\n", 0, Then::GoOn}});
    Outcome outcome;
    {
        QObject owner;
        run({.url = server.root(), .largestBody = 1000}, &owner, &outcome);
        EXPECT_TRUE(eventually([&] { return server.sent > 20; }));
        EXPECT_FALSE(outcome.done);
    }
    EXPECT_TRUE(eventually([&] { return outcome.done; }));
    EXPECT_EQ(outcome.failure, std::make_error_code(std::errc::operation_canceled).message());
    EXPECT_TRUE(eventually([&] { return server.connected == 0; }));
}

TEST(Http, goesThroughTheDesktopsProxyButNotToThisComputer)
{
    const CannedServer proxy({CannedServer::answer("200 OK", "by proxy")});
    const CannedServer here({CannedServer::answer("200 OK", "here")});
    // A desktop's own settings can come before the variable.
    for (const char *name : {"no_proxy", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "GNOME_DESKTOP_SESSION_ID"}) {
        qunsetenv(name);
    }
    qputenv("http_proxy", proxy.root().toEncoded());
    EXPECT_EQ(fetch({.url = QUrl(QStringLiteral("http://marlune.invalid/x")), .largestBody = 1000}).body(), "by proxy");
    ASSERT_EQ(proxy.asked.size(), 1U);
    EXPECT_EQ(proxy.asked[0].target, "http://marlune.invalid/x");
    EXPECT_EQ(fetch(here).body(), "here");
    qunsetenv("http_proxy");
}
