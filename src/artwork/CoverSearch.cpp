#include "artwork/CoverSearch.h"

#include "platform/MarluneError.h"
#include "platform/Version.h"
#include "platform/tasks/Background.h"
#include "platform/text/Characters.h"
#include "platform/web/Http.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QUuid>

#include <system_error>

namespace {

/// Bytes; what is larger is refused.
constexpr std::int64_t maxAnswer = 999'999;

constexpr std::int64_t leastScore = 95; ///< of a match

/// Ends the call whose owner is gone.
void requireOwner(const QPointer<QObject> &owner)
{
    if (!owner) {
        throw std::system_error(std::make_error_code(std::errc::operation_canceled));
    }
}

QCoro::Task<> pause(std::chrono::milliseconds duration, QObject &owner)
{
    const QPointer<QObject> living(&owner);
    auto over = std::make_shared<QPromise<void>>();
    over->start();
    QFuture<void> waiting = over->future();
    auto *timer = new QTimer(&owner);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer); // the others may be early
    // The timer holds the promise alone from here on, and breaks it when it dies with its owner: that ends the wait.
    QObject::connect(timer, &QTimer::timeout, timer, [timer, promise = std::move(over)] {
        promise->finish();
        timer->deleteLater();
    });
    timer->start(duration);
    co_await waiting;
    requireOwner(living);
}

/// What may be over a moment later.
bool isPassing(int status)
{
    return status == 429 || status == 500 || status == 502 || status == 503 || status == 504;
}

/// The whole of `id` as one part of a path, whatever it is: what the user's browser is sent to lies on the site.
QUrl releaseGroup(const QUrl &root, const QString &id, const QByteArray &rest = {})
{
    return QUrl::fromEncoded(
        root.toEncoded(QUrl::StripTrailingSlash) + "/release-group/" + QUrl::toPercentEncoding(id) + rest,
        QUrl::StrictMode);
}

/// Everything but letters, digits and "-._~" goes out encoded: a plus would arrive as a space.
QUrl searchAddress(const QUrl &root, const QString &query)
{
    return QUrl::fromEncoded(root.toEncoded(QUrl::StripTrailingSlash)
            + "/ws/2/release-group/?query=" + QUrl::toPercentEncoding(query) + "&fmt=json&limit=10",
        QUrl::StrictMode);
}

/// 8-4-4-4-12 hexadecimal digits. QUuid takes other forms too.
bool isUuid(const QString &id)
{
    return QUuid::fromString(id).toString(QUuid::WithoutBraces).compare(id, Qt::CaseInsensitive) == 0;
}

[[noreturn]] void refuseAnswer()
{
    throw MarluneError(QStringLiteral("Nie można odczytać odpowiedzi katalogu okładek."));
}

QString text(const QJsonValue &value)
{
    if (!value.isString()) {
        refuseAnswer();
    }
    return value.toString();
}

QJsonArray list(const QJsonValue &value)
{
    if (!value.isArray()) {
        refuseAnswer();
    }
    return value.toArray();
}

QJsonObject object(const QJsonValue &value)
{
    if (!value.isObject()) {
        refuseAnswer();
    }
    return value.toObject();
}

/// 95 and 95.0, but not 95.5.
std::int64_t integer(const QJsonValue &value)
{
    const std::int64_t result = value.toInteger(0);
    if (result != value.toInteger(1)) { // neither is the value's
        refuseAnswer();
    }
    return result;
}

/// Absent for null as well.
template <typename Read> auto ifPresent(const QJsonValue &value, const Read &read)
{
    const bool isAbsent = value.isUndefined() || value.isNull();
    return isAbsent ? std::nullopt : std::optional(read(value));
}

CoverCandidate candidate(const QJsonObject &group)
{
    CoverCandidate result;
    result.id = text(group[QLatin1String("id")]);
    result.title = text(group[QLatin1String("title")]);
    for (const QJsonValue credit : list(group[QLatin1String("artist-credit")])) {
        result.artistCredit.push_back({text(object(credit)[QLatin1String("name")])});
    }
    result.score = ifPresent(group[QLatin1String("score")], integer);
    result.firstReleaseDate = ifPresent(group[QLatin1String("first-release-date")], text);
    result.primaryType = ifPresent(group[QLatin1String("primary-type")], text);
    return result;
}

/// In these a mark is an accent; elsewhere it makes another letter or vowel, as in Japanese or Hindi.
bool takesAccents(char32_t letter)
{
    const QChar::Script script = QChar::script(letter);
    return script == QChar::Script_Latin || script == QChar::Script_Greek || script == QChar::Script_Cyrillic
        || script == QChar::Script_Common;
}

QString withoutAccents(const QString &text)
{
    QString result;
    bool isAccented = true;
    for (const char32_t code : text.normalized(QString::NormalizationForm_D).toUcs4()) {
        const bool isMark = QChar::category(code) == QChar::Mark_NonSpacing;
        isAccented = isMark ? isAccented : takesAccents(code);
        if (!isMark || !isAccented) {
            result.append(QChar::fromUcs4(code));
        }
    }
    return result;
}

/// What is compared of a name. Letters that are no base with an accent stay as they are: "ł" is not "l".
QString normalized(const QString &text)
{
    QString folded = withoutAccents(text).toCaseFolded(); // one letter for each
    return lettersAndNumbers(folded.replace(u'ß', QLatin1String("ss")));
}

} // namespace

CoverServices CoverServices::ofThePublic()
{
    const QUrl catalogue(QStringLiteral("https://musicbrainz.org"));
    return {.catalogue = catalogue, .site = catalogue, .archive = QUrl(QStringLiteral("https://coverartarchive.org"))};
}

QString CoverCandidate::artist() const
{
    QStringList names;
    for (const Credit &credit : artistCredit) {
        names.append(credit.name);
    }
    return names.join(QLatin1String(" & "));
}

QUrl CoverCandidate::artworkURL(const CoverServices &services) const
{
    return releaseGroup(services.archive, id, "/front-500");
}

QUrl CoverCandidate::pageURL(const CoverServices &services) const
{
    return releaseGroup(services.site, id);
}

bool CoverCandidate::matches(const QString &wantedArtist, const QString &wantedTitle) const
{
    if (primaryType.value_or(QStringLiteral("Album")) != QLatin1String("Album") || !score || *score < leastScore) {
        return false;
    }
    const QString artistToFind = normalized(wantedArtist);
    const QString titleToFind = normalized(wantedTitle);
    return !artistToFind.isEmpty() && !titleToFind.isEmpty() && normalized(artist()) == artistToFind
        && normalized(title) == titleToFind;
}

CoverSearch::CoverSearch(CoverServices services)
    : m_services(std::move(services))
{
}

CoverSearch &CoverSearch::shared()
{
    static CoverSearch only;
    return only;
}

QString CoverSearch::query(const QString &artist, const QString &title)
{
    const auto quoted = [](QString text) {
        text.replace(u'\\', QLatin1String("\\\\"));
        text.replace(u'"', QLatin1String("\\\""));
        return QString(u'"' + text + u'"');
    };
    return QLatin1String("releasegroup:") + quoted(title) + QLatin1String(" AND artist:") + quoted(artist);
}

std::vector<CoverCandidate> CoverSearch::decode(const QByteArray &data)
{
    const QJsonDocument document = QJsonDocument::fromJson(data);
    std::vector<CoverCandidate> result;
    for (const QJsonValue group : list(document[QLatin1String("release-groups")])) {
        result.push_back(candidate(object(group)));
    }
    return result;
}

QCoro::Task<> CoverSearch::reserveSearchSlot(QObject &owner)
{
    const QPointer<QObject> living(&owner);
    using Clock = std::chrono::steady_clock;
    const auto start = std::max(m_nextRequest, Clock::now());
    m_nextRequest = start + m_services.spacing; // before any wait: who comes meanwhile waits behind this one
    for (auto now = Clock::now(); now < start; now = Clock::now()) {
        co_await pause(std::chrono::ceil<std::chrono::milliseconds>(start - now), *living);
    }
}

QCoro::Task<Http::Response> CoverSearch::ask(Http::Request &request, Pace pace, QObject &owner)
{
    const QPointer<QObject> living(&owner);
    Http::Request sent = request;
    Http::Response response;
    for (int attempt = 1; attempt <= 2; ++attempt) {
        if (attempt == 2) {
            co_await pause(m_services.retryPause, *living);
        }
        if (pace == Pace::Spaced) {
            co_await reserveSearchSlot(*living);
        }
        response = co_await Http::get(sent, *living);
        requireOwner(living);
        if (!isPassing(response.status)) {
            break;
        }
    }
    co_return response;
}

QCoro::Task<std::vector<CoverCandidate>> CoverSearch::search(
    const QString &artist, const QString &title, QObject &owner)
{
    const QPointer<QObject> living(&owner);
    const QString wanted = query(artist, title);
    // A name read from a disk can hold what is no Unicode text, and such a text fits no address.
    if (artist.trimmed().isEmpty() || title.trimmed().isEmpty() || !wanted.isValidUtf16()) {
        throw MarluneError(QStringLiteral("Podaj wykonawcę i tytuł albumu."));
    }
    if (const auto known = m_cache.constFind(wanted); known != m_cache.cend()) {
        co_return *known;
    }
    Http::Request request {.url = searchAddress(m_services.catalogue, wanted),
        .maxBodyBytes = maxAnswer,
        .silence = m_services.catalogueSilence,
        // The service turns away who does not tell what it is for.
        .userAgent = "Marlune/" + shortProductVersion().toLatin1() + " (personal macOS Rockbox library manager)"};
    const Http::Response response = co_await ask(request, Pace::Spaced, owner);
    if (response.status != 200) {
        throw MarluneError(
            QStringLiteral("Katalog okładek jest chwilowo niedostępny (HTTP %1). Spróbuj ponownie później.")
                .arg(response.status));
    }
    if (!response.body) {
        throw MarluneError(QStringLiteral("Odpowiedź katalogu jest zbyt duża."));
    }
    auto read = [body = *response.body] { return decode(body); };
    const std::vector<CoverCandidate> found = co_await background(read, JobPriority::Utility);
    requireOwner(living);
    m_cache.insert(wanted, found);
    co_return found;
}

QCoro::Task<QByteArray> CoverSearch::image(const CoverCandidate &candidate, QObject &owner, std::int64_t maxBytes)
{
    if (!isUuid(candidate.id)) {
        throw MarluneError(QStringLiteral("Nieprawidłowy identyfikator albumu."));
    }
    Http::Request request {.url = candidate.artworkURL(m_services),
        .maxBodyBytes = maxBytes,
        .silence = m_services.archiveSilence,
        .redirects = Http::Redirects::AnyHost}; // the images lie with another host
    const Http::Response response = co_await ask(request, Pace::Free, owner);
    if (response.status == 404) {
        throw MarluneError(
            QStringLiteral("To wydanie nie ma dostępnej przedniej okładki. Wybierz inny wynik lub własny obraz."));
    }
    if (response.status != 200) {
        throw MarluneError(QStringLiteral("Archiwum nie udostępniło obrazu (HTTP %1). Spróbuj ponownie później.")
                .arg(response.status));
    }
    if (!response.body || response.body->isEmpty()) {
        throw MarluneError(QStringLiteral("Obraz jest pusty lub zbyt duży."));
    }
    co_return *response.body;
}
