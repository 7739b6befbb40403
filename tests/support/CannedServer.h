// A web server on this computer that answers as a test tells it to, and keeps what it was asked. Needs an event loop.
#pragma once

#include "Names.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <vector>

class CannedServer {
public:
    enum class Then {
        Close,
        Stay, ///< silent, with the connection open
        GoOn, ///< for ever, with a byte every 20 ms
    };

    struct Answer {
        QByteArray bytes; ///< the whole of it, status line and all
        std::int64_t padding = 0; ///< so many bytes behind them, each an 'x', made as the client takes them
        Then then = Then::Close;
    };

    struct Asked {
        QByteArray target; ///< of the request line: path and query
        QByteArray head; ///< the whole request
        std::chrono::steady_clock::time_point when = std::chrono::steady_clock::now();
    };

    explicit CannedServer(std::vector<Answer> given)
        : answers(std::move(given))
    {
        if (!m_server.listen(QHostAddress::LocalHost)) {
            throw std::runtime_error("no port to listen on");
        }
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                ++connected;
                QObject::connect(socket, &QTcpSocket::disconnected, [this] { --connected; });
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { listen(*socket); });
            }
        });
    }

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }
    [[nodiscard]] QUrl root() const { return QUrl(u"http://127.0.0.1:%1"_s.arg(port())); }

    /// An answer with this status line's end ("200 OK"), header lines ("A: b\r\n") and a body with its length.
    [[nodiscard]] static Answer answer(
        const QByteArray &status, const QByteArray &body = {}, const QByteArray &headers = {})
    {
        return {.bytes = "HTTP/1.1 " + status + "\r\n" + headers
                + "Connection: close\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body};
    }

    /// Given in turn; the last one again and again.
    std::vector<Answer> answers;
    /// Gives each answer where it is set.
    std::function<Answer(const Asked &)> answering;
    std::vector<Asked> asked;
    int connected = 0; ///< clients at this moment
    std::int64_t sent = 0; ///< bytes that the system has taken for the clients

private:
    void listen(QTcpSocket &socket)
    {
        const QByteArray head = socket.property("head").toByteArray() + socket.readAll();
        socket.setProperty("head", head);
        if (!head.endsWith("\r\n\r\n")) {
            return;
        }
        asked.push_back({head.mid(4, head.indexOf(" HTTP/") - 4), head});
        const Answer answer
            = answering ? answering(asked.back()) : answers.at(std::min(asked.size(), answers.size()) - 1);
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket,
            [this, &socket, then = answer.then, left = answer.padding](qint64 bytes) mutable {
                sent += bytes;
                if (socket.bytesToWrite() > 0) {
                    return;
                }
                if (left > 0) {
                    const std::int64_t piece = std::min<std::int64_t>(left, 100'000);
                    left -= piece;
                    socket.write(QByteArray(piece, 'x'));
                } else if (then == Then::Close) {
                    socket.disconnectFromHost();
                } else if (then == Then::GoOn) {
                    QTimer::singleShot(20, &socket, [&socket] { socket.write("x"); });
                }
            });
        if (answer.bytes.isEmpty()) {
            if (answer.then == Then::Close) {
                socket.abort();
            }
            return;
        }
        socket.write(answer.bytes);
    }

    QTcpServer m_server;
};
