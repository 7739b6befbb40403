#include "platform/web/Http.h"

#include "platform/MarluneError.h"
#include "platform/tasks/Background.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QHash>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <system_error>

namespace {

constexpr int maxRedirects = 5;
constexpr qint64 bufferSize = 65'536; ///< what the network may run ahead of the reader, and what is read at once

bool isThisComputer(const QUrl &url)
{
    const QString host = url.host();
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

QString origin(const QUrl &url)
{
    return url.toString(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
}

using Proxies = QList<QNetworkProxy>;

/// The desktop's proxies, as they were found on a thread of their own: asking for them can start helpers and wait for a
/// network, without end where that does not answer.
class KnownProxies final : public QNetworkProxyFactory {
public:
    Proxies queryProxy(const QNetworkProxyQuery &query) override
    {
        const Proxies direct {QNetworkProxy(QNetworkProxy::NoProxy)};
        return isThisComputer(query.url()) ? direct : m_known.value(origin(query.url()), direct);
    }

    [[nodiscard]] bool knows(const QUrl &url) const { return m_known.contains(origin(url)); }
    /// Asks for the way to this place, unless that question is on its way already. `known` is called with the answer.
    void ask(const QUrl &url, std::function<void()> known);
    /// That way has failed: there may be another one by now.
    void forget(const QUrl &url) { m_known.remove(origin(url)); }

private:
    void note(const QString &place, const Proxies &proxies);

    QHash<QString, Proxies> m_known; ///< by origin
    QHash<QString, std::vector<std::function<void()>>> m_asked; ///< by origin: who waits for the answer
};

struct Network {
    QNetworkAccessManager manager;
    KnownProxies *proxies = new KnownProxies;

    Network() { manager.setProxyFactory(proxies); } // takes it over
};

Network &network()
{
    static Network *only = nullptr;
    if (!only) {
        only = new Network;
        qAddPostRoutine([] { delete std::exchange(only, nullptr); }); // needs the application object to its end
    }
    return *only;
}

void KnownProxies::ask(const QUrl &url, std::function<void()> known)
{
    const QString place = origin(url);
    std::vector<std::function<void()>> &waiting = m_asked[place];
    waiting.push_back(std::move(known));
    if (waiting.size() > 1) {
        return;
    }
    const auto lookUp = [url, place] {
        const Proxies found = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
        postToUi([place, found] { network().proxies->note(place, found); });
    };
    try {
        BackgroundJobs::startDetached(lookUp);
    } catch (const std::system_error &) { // no thread to be had
        note(place, {QNetworkProxy(QNetworkProxy::NoProxy)});
    }
}

void KnownProxies::note(const QString &place, const Proxies &proxies)
{
    m_known.insert(place, proxies);
    for (const std::function<void()> &known : m_asked.take(place)) {
        known();
    }
}

/// One exchange while it is under way.
struct Exchange {
    explicit Exchange(Http::Request made)
        : request(std::move(made))
    {
        finished.start();
    }

    Http::Request request;
    int status = 0;
    QByteArray body;
    bool tooLarge = false;
    std::optional<QUrl> redirect; ///< where the server says that the answer is
    std::exception_ptr failure;
    QPromise<void> finished;
};

const QString forbiddenRedirect = QStringLiteral("Serwer odsyła pod niedozwolony adres.");

std::exception_ptr silenceFailure()
{
    return std::make_exception_ptr(MarluneError(QStringLiteral("Serwer nie odpowiada.")));
}

std::exception_ptr cancellation()
{
    return std::make_exception_ptr(std::system_error(std::make_error_code(std::errc::operation_canceled)));
}

bool isWeb(const QUrl &url)
{
    const bool isKnown = url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
    return url.isValid() && isKnown && !url.host().isEmpty();
}

bool mayLead(const QUrl &from, const QUrl &to, Http::Redirects redirects)
{
    const bool isLessSafe = from.scheme() == QLatin1String("https") && to.scheme() != from.scheme();
    return isWeb(to) && !isLessSafe && (redirects == Http::Redirects::AnyHost || origin(from) == origin(to));
}

/// Finds out how this place is reached, before anything is asked of it. True once that is known; false after `timeout`,
/// or when the owner is gone.
QCoro::Task<bool> learnProxies(QUrl url, std::chrono::milliseconds timeout, QPointer<QObject> owner)
{
    if (isThisComputer(url) || network().proxies->knows(url)) {
        co_return true;
    }
    if (!owner) {
        co_return false;
    }
    auto over = std::make_shared<QPromise<void>>();
    over->start();
    QFuture<void> waiting = over->future();
    const auto end = [over] {
        if (!over->future().isFinished()) {
            over->finish();
        }
    };
    const QPointer<QObject> wait(new QObject(owner));
    QObject::connect(wait, &QObject::destroyed, end);
    QTimer::singleShot(timeout, wait, end);
    const auto isKnown = std::make_shared<bool>(false);
    network().proxies->ask(url, [end, isKnown] {
        *isKnown = true;
        end();
    });
    co_await waiting;
    delete wait;
    co_return *isKnown;
}

QNetworkRequest networkRequest(const Http::Request &request)
{
    QNetworkRequest result(request.url);
    result.setHeader(QNetworkRequest::UserAgentHeader, request.userAgent);
    result.setRawHeader("Accept-Language", "*"); // otherwise the user's own
    // The proxies of each place are asked for first.
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto attribute : {QNetworkRequest::CookieLoadControlAttribute,
             QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::AuthenticationReuseAttribute}) {
        result.setAttribute(attribute, QNetworkRequest::Manual);
    }
    // What a server compresses can grow a million times, at the cost of the UI thread.
    result.setRawHeader("Accept-Encoding", "identity");
    // HTTP/2: it gains single requests nothing, and its streams know no limit on what is read ahead.
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return result;
}

QString failureText(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return QStringLiteral("Nie można połączyć się z serwerem. Sprawdź połączenie z internetem.");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("Połączenie z serwerem zostało przerwane.");
    case QNetworkReply::SslHandshakeFailedError:
        return QStringLiteral("Nie można bezpiecznie połączyć się z serwerem.");
    default: // Qt's own words are English and hold the whole address
        return QStringLiteral("Nie można pobrać danych z serwera.");
    }
}

void receive(Exchange &exchange, QNetworkReply &reply)
{
    std::array<char, bufferSize> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    for (qint64 count = 0; !exchange.tooLarge && (count = reply.read(piece.data(), piece.size())) > 0;) {
        exchange.tooLarge = exchange.body.size() + count > exchange.request.maxBodyBytes;
        if (!exchange.tooLarge) {
            exchange.body.append(piece.data(), count);
        }
    }
}

void conclude(Exchange &exchange, QNetworkReply &reply)
{
    exchange.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // A status that tells of a failure is an answer all the same, where it came whole.
    const auto error = reply.error();
    const bool isStatus = (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
    const bool isOddStatus = error == QNetworkReply::ProtocolInvalidOperationError; // 400 and 418
    const bool answered = error == QNetworkReply::NoError || isStatus || isOddStatus || exchange.tooLarge;
    const QVariant target = reply.attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (answered && target.isValid()) {
        exchange.redirect = exchange.request.url.resolved(target.toUrl());
    }
    if (!answered) {
        network().proxies->forget(exchange.request.url);
    }
    if (!exchange.failure && !answered) {
        exchange.failure = std::make_exception_ptr(MarluneError(failureText(reply)));
    }
    reply.deleteLater();
    exchange.finished.finish();
}

void start(const std::shared_ptr<Exchange> &exchange, QObject &owner)
{
    QNetworkReply *reply = network().manager.get(networkRequest(exchange->request));
    reply->setReadBufferSize(bufferSize);
    QObject::connect(reply, &QNetworkReply::finished, reply, [exchange, reply] {
        if (reply->isOpen()) { // not given up
            receive(*exchange, *reply);
        }
        conclude(*exchange, *reply);
    });
    const auto stop = [exchange, reply](const std::exception_ptr &reason) {
        if (!reply->isFinished()) {
            exchange->failure = reason;
            reply->abort(); // emits finished
        }
    };
    QObject::connect(&owner, &QObject::destroyed, reply, [stop] { stop(cancellation()); });
    const auto expire = [stop] { stop(silenceFailure()); };
    auto *silence = new QTimer(reply);
    silence->setSingleShot(true);
    silence->start(exchange->request.silence);
    QObject::connect(silence, &QTimer::timeout, reply, expire);
    QTimer::singleShot(exchange->request.timeout, reply, expire);
    const auto heard = [silence] { silence->start(); };
    QObject::connect(reply, &QNetworkReply::metaDataChanged, silence, heard);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [exchange, reply, heard] {
        heard();
        receive(*exchange, *reply);
        if (exchange->tooLarge) {
            QMetaObject::invokeMethod(reply, &QNetworkReply::abort, Qt::QueuedConnection); // not amid its own signal
        }
    });
}

/// The answer of this one place, a redirect too.
QCoro::Task<> runExchange(std::shared_ptr<Exchange> exchange, QDeadlineTimer deadline, QPointer<QObject> owner)
{
    const std::chrono::milliseconds timeout
        = std::min(exchange->request.silence, std::chrono::milliseconds(deadline.remainingTime()));
    auto learning = learnProxies(exchange->request.url, timeout, owner);
    const bool isLearned = co_await learning;
    if (!owner) {
        exchange->failure = cancellation();
    } else if (!isLearned || deadline.hasExpired()) {
        exchange->failure = silenceFailure();
    } else {
        exchange->request.timeout = std::chrono::milliseconds(deadline.remainingTime());
        start(exchange, *owner);
        QFuture<void> finished = exchange->finished.future();
        co_await finished;
    }
    if (exchange->failure) {
        std::rethrow_exception(exchange->failure);
    }
}

} // namespace

QCoro::Task<Http::Response> Http::get(Request &request, QObject &owner)
{
    const QPointer<QObject> living(&owner);
    Request asked = request; // `request` itself may be gone after the first co_await
    if (!isWeb(asked.url)) {
        throw MarluneError(QStringLiteral("Nieprawidłowy adres serwera."));
    }
    const QDeadlineTimer deadline(asked.timeout);
    for (int redirects = 0;; ++redirects) {
        const auto exchange = std::make_shared<Exchange>(asked);
        auto running = runExchange(exchange, deadline, living);
        co_await running;
        if (!exchange->redirect) {
            Response response;
            response.status = exchange->status;
            if (!exchange->tooLarge) {
                response.body = std::move(exchange->body);
            }
            co_return response;
        }
        if (redirects == maxRedirects || !mayLead(asked.url, *exchange->redirect, asked.redirects)) {
            throw MarluneError(forbiddenRedirect);
        }
        asked.url = *exchange->redirect;
    }
}
