// Finds album covers in the MusicBrainz catalogue and brings the images from the Cover Art Archive.
//
// The catalogue bears about one request a second from a program, so that all searches share one rhythm, retries
// included; the archive has no such limit. A service that is busy is asked a second time. What comes in is bounded
// while it arrives and stays in memory: no file is made. Artist and title go out, and nothing else of the user.
//
// UI thread; nothing blocks there. What waits or is under way ends with the owner that a call is given, with
// std::system_error (operation_canceled), and nothing of it is left but a place in the rhythm, which goes unused.
// Otherwise calls fail with MarluneError; no network and time-outs are those of Http::get().
#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QHash>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

class QObject;

namespace Http {
struct Request;
struct Response;
} // namespace Http

/// Where the services are, and how they are treated. Without roots nothing is asked of any server, and calls fail.
struct CoverServices {
    QUrl catalogue; ///< the web service
    QUrl site; ///< the catalogue as people read it
    QUrl archive;
    /// After so long without a sign of the server it counts as out of reach.
    std::chrono::milliseconds catalogueSilence = std::chrono::seconds(25);
    std::chrono::milliseconds archiveSilence = std::chrono::seconds(35);
    std::chrono::milliseconds spacing = std::chrono::milliseconds(1100); ///< from one search to the next
    std::chrono::milliseconds retryPause = std::chrono::seconds(2);

    /// As the public knows them, by HTTPS.
    [[nodiscard]] static CoverServices ofThePublic();
};

/// One release group: an album in all its editions. Its identity is the id.
struct CoverCandidate {
    struct Credit {
        QString name;

        bool operator==(const Credit &) const = default;
    };

    QString id; ///< as the service sent it; a UUID if all is well
    QString title;
    std::vector<Credit> artistCredit;
    std::optional<std::int64_t> score; ///< how well it fits the search, up to 100
    std::optional<QString> firstReleaseDate; ///< "1980-07-25" or only its beginning
    std::optional<QString> primaryType; ///< "Album", "EP", "Single", ...

    bool operator==(const CoverCandidate &) const = default;

    /// All names, joined with " & ".
    [[nodiscard]] QString artist() const;
    /// The front cover, 500 pixels wide.
    [[nodiscard]] QUrl artworkURL(const CoverServices &services = CoverServices::ofThePublic()) const;
    /// For the user's browser.
    [[nodiscard]] QUrl pageURL(const CoverServices &services = CoverServices::ofThePublic()) const;
    /// Whether it is the wanted album beyond doubt: the gate for a cover that nobody looks at first. Case, spaces,
    /// punctuation and the accents of Latin, Greek and Cyrillic letters make no difference. Any thread.
    [[nodiscard]] bool matches(const QString &wantedArtist, const QString &wantedTitle) const;
};

/// It outlives the owners that its calls are given. Copies of the arguments are made before a call returns.
class CoverSearch {
public:
    explicit CoverSearch(CoverServices services = CoverServices::ofThePublic());
    CoverSearch(const CoverSearch &) = delete;
    CoverSearch &operator=(const CoverSearch &) = delete;

    /// The program's only one; others are for tests.
    [[nodiscard]] static CoverSearch &shared();

    /// Up to ten release groups, in the service's order. The same texts are asked for once in a run of the program;
    /// a failure is not remembered.
    [[nodiscard]] QCoro::Task<std::vector<CoverCandidate>> search(
        const QString &artist, const QString &title, QObject &owner);
    static constexpr std::int64_t maxImageBytes = 7'999'999;
    /// The front cover as the archive has it: never empty, of `maxBytes` at most, of any content.
    [[nodiscard]] QCoro::Task<QByteArray> image(
        const CoverCandidate &candidate, QObject &owner, std::int64_t maxBytes = maxImageBytes);

    /// The search in the service's language (Lucene's). Any thread.
    [[nodiscard]] static QString query(const QString &artist, const QString &title);
    /// The release groups of an answer. Throws MarluneError where one lacks its id, title or credits, or where a value
    /// is of another kind than it should be. Any thread.
    [[nodiscard]] static std::vector<CoverCandidate> decode(const QByteArray &data);

    [[nodiscard]] const CoverServices &services() const { return m_services; }

private:
    enum class Pace : std::uint8_t { Spaced, Free };

    /// The answer to the first attempt, or to the second where the first tells of a passing trouble.
    [[nodiscard]] QCoro::Task<Http::Response> ask(Http::Request &request, Pace pace, QObject &owner);
    [[nodiscard]] QCoro::Task<> reserveSearchSlot(QObject &owner);

    CoverServices m_services;
    std::chrono::steady_clock::time_point m_nextRequest = std::chrono::steady_clock::time_point::min();
    QHash<QString, std::vector<CoverCandidate>> m_cache; ///< by query; for the run of the program, of any size
};
