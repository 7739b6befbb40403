#include "platform/Http.h"

#include "platform/Background.h"
#include "platform/MarluneError.h"

#include <QCoreApplication>
#include <QHash>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QPointer>
#include <QTimer>

#include <array>
#include <system_error>

namespace {

constexpr int mostRedirects = 5;
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

/// The desktop's proxies, as they were found on a background thread: asking for them can start helpers and wait for
/// a network.
class Proxies final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        if (isThisComputer(query.url())) {
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        }
        const auto known = m_known.constFind(origin(query.url()));
        return known == m_known.constEnd() ? QList<QNetworkProxy> {QNetworkProxy(QNetworkProxy::NoProxy)} : *known;
    }

    void note(const QUrl &url, const QList<QNetworkProxy> &proxies) { m_known.insert(origin(url), proxies); }

private:
    QHash<QString, QList<QNetworkProxy>> m_known;
};

struct Network {
    QNetworkAccessManager manager;
    Proxies *proxies = new Proxies;

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
    std::exception_ptr failure;
    QPromise<void> finished;
};

/// Finds out how this place is reached, before anything is asked of it.
QCoro::Task<> learnProxies(QUrl url)
{
    if (!isThisComputer(url)) {
        auto ask = [url] { return QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url)); };
        const QList<QNetworkProxy> proxies = co_await background(ask, JobPriority::Utility);
        network().proxies->note(url, proxies);
    }
}

/// To a place that it may lead to; returns at once.
QCoro::Task<> follow(QUrl redirect, QPointer<QNetworkReply> reply)
{
    auto learning = learnProxies(redirect);
    co_await learning;
    if (reply) {
        Q_EMIT reply->redirectAllowed();
    }
}

QNetworkRequest networkRequest(const Http::Request &request)
{
    QNetworkRequest result(request.url);
    result.setHeader(QNetworkRequest::UserAgentHeader, request.userAgent);
    result.setRawHeader("Accept-Language", "*"); // else the user's own
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
        request.redirects == Http::Redirects::AnyHost ? QNetworkRequest::UserVerifiedRedirectPolicy
                                                      : QNetworkRequest::SameOriginRedirectPolicy);
    result.setMaximumRedirectsAllowed(mostRedirects);
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

const QString forbiddenRedirect = QStringLiteral("Serwer odsyła pod niedozwolony adres.");

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
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::TooManyRedirectsError:
        return forbiddenRedirect;
    default:
        return QStringLiteral("Nie można pobrać danych z serwera: ") + reply.errorString();
    }
}

void receive(Exchange &exchange, QNetworkReply &reply)
{
    std::array<char, bufferSize> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    for (qint64 count = 0; !exchange.tooLarge && (count = reply.read(piece.data(), piece.size())) > 0;) {
        exchange.tooLarge = exchange.body.size() + count > exchange.request.largestBody;
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
    const bool answered = error == QNetworkReply::NoError || isStatus || exchange.tooLarge;
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
    QObject::connect(&owner, &QObject::destroyed, reply, [stop] {
        stop(std::make_exception_ptr(std::system_error(std::make_error_code(std::errc::operation_canceled))));
    });

    const auto expire
        = [stop] { stop(std::make_exception_ptr(MarluneError(QStringLiteral("Serwer nie odpowiada.")))); };
    auto *silence = new QTimer(reply);
    silence->setSingleShot(true);
    silence->start(exchange->request.silence);
    QObject::connect(silence, &QTimer::timeout, reply, expire);
    QTimer::singleShot(exchange->request.patience, reply, expire);
    const auto heard = [silence] { silence->start(); };
    QObject::connect(reply, &QNetworkReply::redirected, reply,
        [reply, stop, heard, redirects = exchange->request.redirects, last = exchange->request.url](
            const QUrl &place) mutable {
            heard();
            if (last.scheme() == QLatin1String("https") && place.scheme() != last.scheme()) {
                stop(std::make_exception_ptr(MarluneError(forbiddenRedirect)));
            } else if (redirects == Http::Redirects::AnyHost) {
                last = place;
                follow(place, reply);
            }
        });
    QObject::connect(reply, &QNetworkReply::metaDataChanged, silence, heard);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [exchange, reply, heard] {
        heard();
        receive(*exchange, *reply);
        if (exchange->tooLarge) {
            QMetaObject::invokeMethod(reply, &QNetworkReply::abort, Qt::QueuedConnection); // not amid its own signal
        }
    });
}

} // namespace

QCoro::Task<Http::Response> Http::get(Request &request, QObject &owner)
{
    const QPointer<QObject> living(&owner);
    const auto exchange = std::make_shared<Exchange>(request);
    const QUrl url = request.url; // `request` itself may be gone after the first co_await
    const bool isWeb = url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
    if (!url.isValid() || !isWeb || url.host().isEmpty()) {
        throw MarluneError(QStringLiteral("Nieprawidłowy adres serwera."));
    }
    auto learning = learnProxies(url);
    co_await learning;
    if (living) {
        start(exchange, *living);
        QFuture<void> finished = exchange->finished.future();
        co_await finished;
    } else {
        exchange->failure
            = std::make_exception_ptr(std::system_error(std::make_error_code(std::errc::operation_canceled)));
    }
    if (exchange->failure) {
        std::rethrow_exception(exchange->failure);
    }
    Response response;
    response.status = exchange->status;
    if (!exchange->tooLarge) {
        response.body = std::move(exchange->body);
    }
    co_return response;
}
