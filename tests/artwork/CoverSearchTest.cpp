// What is asked of the cover services and when, what becomes of their answers, and which album is the wanted one.
#include "artwork/CoverSearch.h"

#include "support/CannedServer.h"
#include "support/Testing.h"

#include <gmock/gmock.h>
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using Answers = std::vector<CannedServer::Answer>;
const auto answer
    = [](const QByteArray &status, const QByteArray &body = {}) { return CannedServer::answer(status, body); };
const QByteArray group = R"({"release-groups":[{"id":"i","title":"t","artist-credit":[{"name":"A"},{"name":"B"}]}]})";
const QString uuid = u"0da580f2-6768-498f-af9d-2becaddf15e0"_s;
const QString a = u"a"_s;

/// Both services on one server, and calls to them that are followed to their ends.
struct Desk {
    explicit Desk(Answers answers, std::chrono::milliseconds wait = 20ms, std::chrono::milliseconds silence = 10s)
        : server(std::move(answers))
        , covers({server.root(), {}, server.root(), silence, silence, wait, wait})
    {
    }

    CannedServer server;
    CoverSearch covers;
    std::string outcome; ///< "N." candidates or bytes, or why there are none

    template <typename Result> QCoro::Task<> follow(QCoro::Task<Result> call)
    {
        try {
            const Result result = co_await call;
            outcome += std::to_string(result.size()) + '.';
        } catch (const std::exception &) {
            outcome += describeFailure(std::current_exception()).toStdString();
        }
    }
    std::string search(const QString &title)
    {
        QObject owner;
        follow(covers.search(u"A/C"_s, title, owner));
        EXPECT_TRUE(eventually([&] { return !outcome.empty(); }));
        return std::exchange(outcome, {});
    }
    std::string image(const QString &id)
    {
        QObject owner;
        follow(covers.image({id, {}, {}, {}, {}, {}}, owner));
        EXPECT_TRUE(eventually([&] { return !outcome.empty(); }));
        return std::exchange(outcome, {});
    }
};

} // namespace

TEST(CoverSearch, sendsTheWholeQueryOnce)
{
    Desk desk({answer("404 x"), answer("200 OK", "{}"), answer("200 OK", group)});
    const std::tuple<const char *, const char *, const char *, std::size_t> rows[] = {{"Black", "404", "Black", 1},
        {R"( ż+&#%="\ )", "odczytać", R"( ż+&#%=\"\\ )", 2}, {R"( ż+&#%="\ )", "1.", R"( ż+&#%=\"\\ )", 3},
        {R"( ż+&#%="\ )", "1.", R"( ż+&#%=\"\\ )", 3}, {R"( Ż+&#%="\ )", "1.", R"( Ż+&#%=\"\\ )", 4},
        {"\u3000\n", "Podaj wykonawcę i tytuł albumu.", R"( Ż+&#%=\"\\ )", 4}};
    for (const auto &[title, outcome, escaped, requests] : rows) {
        EXPECT_THAT(desk.search(QString::fromUtf8(title)), HasSubstr(outcome));
        ASSERT_EQ(desk.server.asked.size(), requests);
        const auto &[target, head, when] = desk.server.asked.back();
        EXPECT_EQ(QByteArray::fromPercentEncoding(target),
            QByteArray("/ws/2/release-group/?query=releasegroup:\"") + escaped
                + "\" AND artist:\"A/C\"&fmt=json&limit=10");
        EXPECT_THAT(target.toStdString(), testing::MatchesRegex("[^=]+=[A-Za-z0-9%_.~-]+&fmt=json&limit=10"));
        EXPECT_TRUE(head.contains("\r\nUser-Agent: Marlune/0.6 (personal macOS Rockbox library manager)\r\n"));
    }
    EXPECT_THAT(desk.search(QChar(0xDCE9)), HasSubstr("Podaj"));
}

TEST(CoverSearch, decodesOnlyWhatFits)
{
    const auto with = [](const char *more) { return QByteArray(group).insert(group.size() - 3, QByteArray(more)); };
    const std::pair<const char *, std::int64_t> good[] = {{R"(,"score":95)", 95}, {R"(,"score":95.0,"x":[{}])", 95},
        {R"(,"score":null,"primary-type":null)", -1}, {R"(,"score":9223372036854775807)", INT64_MAX}};
    for (const auto &[more, score] : good) {
        EXPECT_EQ(CoverSearch::decode(with(more)).at(0).score.value_or(-1), score);
        EXPECT_EQ(CoverSearch::decode(with(more)).at(0).artist(), u"A & B"_s);
    }
    for (const QByteArray &data : {with(R"(,"score":95.5)"), with(R"(,"score":9223372036854775808)"),
             with(R"(,"score":1e999)"), with(R"(,"score":"95")"), with(R"(,"primary-type":1)"), with(R"(,"id":7)"),
             with(R"(,"title":null)"), with(R"(,"artist-credit":{})"), with(R"(,"artist-credit":[{}])"),
             with(",\"x\":\"\xFF\""), QByteArray(400'000, '['), group.chopped(1), QByteArray("[]"), QByteArray("{}")}) {
        EXPECT_THAT(failureOf([&] { (void)CoverSearch::decode(data); }), HasSubstr("odczytać")) << data.toStdString();
    }
}

TEST(CoverCandidate, matchesOnlyBeyondDoubt)
{
    const char *const names[][3] = {{"Björk", "BJO\u0308RK", "y"}, {"AC/DC", "ac dc", "y"}, {"Straße", "STRAẞE", "y"},
        {"ß", "SS", "y"}, {"Ḿỹ", "my", "y"}, {"Łódź", "łodz", "y"}, {"Łódź", "Lodz", "n"}, {"МИЙ", "мии", "y"},
        {"が", "か", "n"}, {"が", "か\u3099", "y"}, {"कु", "कू", "n"}, {"𐐀1", "𐐨 1", "y"}, {"!!!", "!!!", "n"}};
    for (const auto &[has, wanted, isSame] : names) {
        const auto [name, text] = std::pair(QString::fromUtf8(has), QString::fromUtf8(wanted));
        EXPECT_EQ((CoverCandidate {{}, name, {{a}}, 95, {}, {}}.matches(a, text)), *isSame == 'y') << has << wanted;
        EXPECT_EQ((CoverCandidate {{}, a, {{name}}, 95, {}, {}}.matches(text, a)), *isSame == 'y') << has << wanted;
    }
    const std::tuple<std::optional<std::int64_t>, std::optional<QString>, bool> facts[]
        = {{95, {}, true}, {94, {}, false}, {{}, {}, false}, {100, u"Album"_s, true}, {100, u"EP"_s, false}};
    for (const auto &[score, type, isMatch] : facts) {
        EXPECT_EQ((CoverCandidate {{}, a, {{a}, {a}}, score, {}, type}.matches(u"A, a"_s, a)), isMatch);
    }
}

TEST(CoverSearch, asksABusyServiceOnceMoreAndTellsOtherFailures)
{
    const CannedServer other({answer("200 OK", "image")});
    const auto to
        = [](const QByteArray &url) { return CannedServer::answer("307 x", {}, "Location: " + url + "\r\n"); };
    const auto untold = [](int size) { return CannedServer::Answer {"HTTP/1.1 200 OK\r\n\r\n", size}; };
    const auto blank = [](int size) { return answer("200 OK", group.leftJustified(size)); };
    // Answers, what becomes of a search and of an image, requests for each.
    const std::tuple<Answers, const char *, const char *, std::size_t> rows[]
        = {{{answer("404 x")}, "Katalog okładek jest chwilowo niedostępny (HTTP 404). Spróbuj ponownie później.",
               "To wydanie nie ma dostępnej przedniej okładki. Wybierz inny wynik lub własny obraz.", 1},
            {{answer("503 x"), answer("503 x"), blank(500)}, "(HTTP 503)",
                "Archiwum nie udostępniło obrazu (HTTP 503). Spróbuj ponownie później.", 2},
            {{answer("503 x"), blank(999'999)}, "1.", "999999.", 2}, {{answer("204 x")}, "(HTTP 204)", "(HTTP 204)", 1},
            {{answer("429 x"), answer("500 x")}, "(HTTP 500)", "(HTTP 500)", 2},
            {{answer("500 x"), answer("502 x")}, "(HTTP 502)", "(HTTP 502)", 2},
            {{answer("502 x"), answer("400 x")}, "(HTTP 400)", "(HTTP 400)", 2},
            {{answer("504 x"), answer("404 x")}, "(HTTP 404)", "To wydanie", 2},
            {{blank(1'000'000)}, "Odpowiedź katalogu jest zbyt duża.", "1000000.", 1},
            {{answer("200 OK")}, "odczytać", "Obraz jest pusty lub zbyt duży.", 1},
            {{untold(7'999'999)}, "zbyt duża", "7999999.", 1}, {{untold(8'000'000)}, "zbyt duża", "zbyt duży", 1},
            {{{"", 0, CannedServer::Then::Stay}}, "nie odpowiada", "nie odpowiada", 1},
            {{to(other.root().toEncoded())}, "niedozwolony", "5.", 1}, {{to("/")}, "niedozwolony", "niedozwolony", 6}};
    for (const auto &[answers, search, image, requests] : rows) {
        const auto silence = std::string_view(search) == "nie odpowiada" ? 300ms : 10'000ms;
        Desk catalogue(answers, 20ms, silence);
        EXPECT_THAT(catalogue.search(a), HasSubstr(search));
        Desk archive(answers, 20ms, silence);
        EXPECT_THAT(archive.image(uuid), HasSubstr(image));
        EXPECT_EQ(std::pair(catalogue.server.asked.size(), archive.server.asked.size()), std::pair(requests, requests));
    }
}

TEST(CoverSearch, keepsTheRhythmOfTheCatalogue)
{
    Desk catalogue({answer("503 x"), answer("200 OK", group)});
    Desk archive({answer("503 x"), answer("200 OK", "image")});
    CoverSearch covers({.catalogue = catalogue.server.root(), .site = {}, .archive = archive.server.root()});
    QObject owner;
    const auto start = std::chrono::steady_clock::now();
    archive.follow(covers.image({uuid, {}, {}, {}, {}, {}}, owner));
    for (const QString &title : {a, a, a}) {
        catalogue.follow(covers.search(a, title, owner));
    }
    ASSERT_TRUE(eventually([&] { return catalogue.outcome == "1.1.1."; }));
    ASSERT_EQ(catalogue.server.asked.size(), 4U); // with the first one's second attempt
    for (int i = 0; i < 4; ++i) {
        EXPECT_GE(catalogue.server.asked[std::size_t(i)].when - start, i * 1100ms) << i;
    }
    EXPECT_GE(archive.server.asked.at(1).when - start, 2s);
}

TEST(CoverSearch, endsWithItsOwner)
{
    Desk under({{"HTTP/1.1 200 OK\r\n\r\n", 0, CannedServer::Then::GoOn}}, 60s);
    Desk before({});
    Desk between({answer("503 x")}, 60s);
    auto owner = std::make_unique<QObject>();
    under.follow(under.covers.search(a, a, *owner));
    before.follow(under.covers.search(a, a, *owner));
    between.follow(between.covers.image({uuid, {}, {}, {}, {}, {}}, *owner));
    EXPECT_TRUE(eventually([&] { return under.server.sent > 30 && between.server.sent > 0; }));
    EXPECT_EQ(under.outcome + before.outcome + between.outcome, "");
    owner.reset();
    for (Desk *desk : {&under, &before, &between}) {
        EXPECT_TRUE(eventually([&] { return !desk->outcome.empty() && desk->server.connected == 0; }));
        EXPECT_EQ(desk->outcome, std::make_error_code(std::errc::operation_canceled).message());
    }
    EXPECT_EQ(under.server.asked.size() + between.server.asked.size(), 2U);
}

TEST(CoverSearch, fetchesImagesOfUuidsOnly)
{
    Desk desk({answer("200 OK", "image")});
    for (const QString &wrong :
        {QString(), QString(u'{' + uuid + u'}'), QString(uuid + u'\n'), QString(uuid).remove(u'-'), uuid.chopped(1),
            QString(uuid).replace(u'f', QChar(0xFF46)), QString(uuid).replace(8, 1, u'0')}) {
        EXPECT_EQ(desk.image(wrong), "Nieprawidłowy identyfikator albumu.") << wrong;
    }
    EXPECT_EQ(desk.server.asked.size(), 0U);
    EXPECT_EQ(desk.image(uuid.toUpper()), "5.");
    EXPECT_EQ(desk.server.asked[0].target, "/release-group/" + uuid.toUpper().toLatin1() + "/front-500");
}
