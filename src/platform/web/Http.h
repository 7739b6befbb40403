// Single requests to services of others: a GET, with limits on how long it takes, how much it brings and where it
// leads.
//
// All go through one connection manager, which lives as long as the program. UI thread; nothing blocks there. What a
// server sends never holds more memory than was allowed for. Nothing of the user goes out but what the address says:
// no cookies, no language, no credentials; and nothing is cached. The desktop's proxies are used, except to this
// computer itself.
#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <optional>

class QObject;

namespace Http {

enum class Redirects : std::uint8_t {
    SameOrigin, ///< on the same host, by the same protocol and port
    AnyHost, ///< anywhere, but never from HTTPS to HTTP
};

struct Request {
    QUrl url; ///< http or https
    std::int64_t maxBodyBytes = 0; ///< bytes
    /// After this long without a sign of the server (or, before it is asked, of the proxy to go by), and after
    /// `timeout` in any case, the request has failed.
    std::chrono::milliseconds silence = std::chrono::seconds(25);
    std::chrono::milliseconds timeout = std::chrono::minutes(5);
    Redirects redirects = Redirects::SameOrigin; ///< five in a row at most
    QByteArray userAgent = "Marlune";
};

struct Response {
    int status = 0;
    std::optional<QByteArray> body; ///< absent where it was larger than allowed; the rest was not fetched then
};

/// Sends the request and returns the answer, whatever its status. Throws MarluneError where there is none, or not all
/// of it, and std::system_error (operation_canceled) once the owner is destroyed, which ends the exchange.
/// Takes the request as background() takes its work, and for the same reason; it is copied before the call returns.
[[nodiscard]] QCoro::Task<Response> get(Request &request, QObject &owner);

} // namespace Http
