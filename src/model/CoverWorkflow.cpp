// Covers from the network: the one that the user picks, or all that are missing.
#include "model/Model.h"

#include "storage/FileChanges.h"

#include "platform/MarluneError.h"

#include <QPointer>

namespace {

const QString sourcesKey = QStringLiteral("coverSources");

/// The one candidate that is the album beyond doubt; absent if there is none or a second one.
std::optional<CoverCandidate> onlyMatch(const std::vector<CoverCandidate> &candidates, const Album &album)
{
    std::optional<CoverCandidate> match;
    for (const CoverCandidate &candidate : candidates) {
        if (candidate.matches(album.artist, album.title)) {
            if (match) {
                return std::nullopt;
            }
            match = candidate;
        }
    }
    return match;
}

/// Whether it is the user's stop that a job failed at, and nothing else.
bool isCancellation(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::system_error &error) {
        return error.code() == std::errc::operation_canceled;
    } catch (...) {
        return false;
    }
}

} // namespace

void MarluneModel::saveCoverSource(const CoverCandidate &candidate, const Album &album)
{
    m_environment.settings.insertTexts(
        sourcesKey, {{album.id(), candidate.pageURL(m_environment.covers.services()).toString()}});
    Q_EMIT coverDownloaded(album.id());
}

QUrl MarluneModel::coverSource(const QString &albumId) const
{
    const QUrl page(m_environment.settings.textMap(sourcesKey).value(albumId), QUrl::StrictMode);
    // The settings are a file that anything may be written into: what is no page is not handed to the desktop.
    return page.scheme() == QStringLiteral("https") || page.scheme() == QStringLiteral("http") ? page : QUrl();
}

void MarluneModel::downloadCover(
    const CoverCandidate &candidate, const Album &album, std::optional<bool> onDeviceOverride)
{
    if (m_work.busy()) {
        return;
    }
    m_work.begin(QStringLiteral("Pobieram okładkę…"), RunningWork::Ends::BetweenFiles);
    m_coverRequest = std::make_unique<QObject>();
    runCoverDownload(candidate, album, coverPlace(onDeviceOverride));
}

/// The candidate's picture becomes the album's cover, and the settings remember where it came from.
QCoro::Task<> MarluneModel::fetchCover(CoverCandidate candidate, Album album, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    const std::stop_token stop = m_work.stopToken();
    const auto requireGo = [&stop] {
        if (stop.stop_requested()) {
            throw std::system_error(std::make_error_code(std::errc::operation_canceled));
        }
    };
    requireGo();
    auto fetching = m_environment.covers.image(candidate, *m_coverRequest);
    const QByteArray image = co_await fetching;
    if (!self) {
        co_return;
    }
    requireGo();
    auto applying = applyArtwork(album, image, place);
    co_await applying;
    if (self) {
        saveCoverSource(candidate, album);
    }
}

QCoro::Task<> MarluneModel::runCoverDownload(CoverCandidate candidate, Album album, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    std::exception_ptr failure;
    std::optional<QString> loss;
    try {
        auto holding = heldPlace(place);
        place = co_await holding;
        if (!self) {
            co_return;
        }
        auto fetching = fetchCover(candidate, album, place);
        co_await fetching;
    } catch (const Storage::UndoFailure &undo) {
        failure = std::current_exception();
        loss = undo.message();
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!self) {
        co_return;
    }
    if (loss) {
        m_work.setAlert(loss);
    }
    if (failure && isCancellation(failure)) {
        m_work.setStatus(QStringLiteral("Przerwano pobieranie okładki."));
    } else if (failure) {
        m_work.setStatus(QStringLiteral("Nie udało się pobrać okładki: ") + describeFailure(failure));
    } else {
        m_work.setStatus(place.onDevice ? QStringLiteral("Pobrano i zapisano okładkę na iPodzie.")
                                        : QStringLiteral("Pobrano okładkę; zostanie wgrana razem z albumem."));
    }
    m_coverRequest.reset();
    m_work.end();
    refresh();
}

void MarluneModel::findMissingCovers()
{
    if (m_work.busy()) {
        return;
    }
    std::vector<Album> albums;
    for (const std::shared_ptr<const Album> &album : m_browsing.everyAlbum()) {
        if (!album->artworkBytes()) {
            albums.push_back(*album);
        }
    }
    if (albums.empty()) {
        return;
    }
    m_work.begin(QStringLiteral("Szukam brakujących okładek…"), RunningWork::Ends::BetweenFiles);
    m_coverRequest = std::make_unique<QObject>();
    runCoverSearch(std::move(albums), coverPlace());
}

/// Fails at an UndoFailure alone; the album is unavailable then as well.
QCoro::Task<MarluneModel::CoverFinding> MarluneModel::findCover(Album album, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    CoverFinding finding = CoverFinding::Unavailable;
    try {
        auto searching = m_environment.covers.search(album.artist, album.title, *m_coverRequest);
        const std::vector<CoverCandidate> candidates = co_await searching;
        const std::optional<CoverCandidate> match = onlyMatch(candidates, album);
        if (!match) {
            finding = CoverFinding::Manual;
        } else if (self) {
            auto fetching = fetchCover(*match, album, place);
            co_await fetching;
            finding = CoverFinding::Added;
        }
    } catch (const Storage::UndoFailure &) {
        throw;
    } catch (const std::exception &) {
        finding = CoverFinding::Unavailable; // the next album may fare better
    }
    co_return finding;
}

QCoro::Task<> MarluneModel::runCoverSearch(std::vector<Album> albums, CoverPlace place)
{
    const QPointer<MarluneModel> self(this);
    const std::stop_token stop = m_work.stopToken();
    std::map<CoverFinding, int> counts;
    QStringList losses;
    int done = 0;
    try {
        auto holding = heldPlace(place);
        place = co_await holding;
    } catch (const std::exception &) { // without the device its albums count as unavailable
    }
    if (!self) {
        co_return;
    }
    for (const Album &album : albums) {
        if (stop.stop_requested()) {
            break;
        }
        CoverFinding finding = CoverFinding::Unavailable;
        if (isReachable(place)) { // otherwise the network need not be asked
            try {
                auto searching = findCover(album, place);
                finding = co_await searching;
            } catch (const Storage::UndoFailure &failure) {
                losses.append(failure.message());
            }
            if (!self) {
                co_return;
            }
            if (finding != CoverFinding::Added && stop.stop_requested()) {
                break; // what was not asked to its end is not known
            }
        }
        ++counts[finding];
        ++done;
        m_work.report(double(done) / double(albums.size()));
        m_work.setStatus(QStringLiteral("Sprawdzono albumy: ") + QString::number(done) + QStringLiteral(" / ")
            + QString::number(albums.size()) + QStringLiteral(" · dodano: ")
            + QString::number(counts[CoverFinding::Added]));
    }
    m_coverRequest.reset();
    refresh();
    m_work.end();
    reportCoverSearch(counts, done, int(albums.size()), losses);
}

/// `done`: albums that were looked for, of `total`; `losses`: what the user has to know beside the counts.
void MarluneModel::reportCoverSearch(std::map<CoverFinding, int> counts, int done, int total, const QStringList &losses)
{
    const QString result = QStringLiteral("Dodano okładki: ") + QString::number(counts[CoverFinding::Added])
        + QStringLiteral(". Do wyboru ręcznie: ") + QString::number(counts[CoverFinding::Manual])
        + QStringLiteral(". Niedostępne: ") + QString::number(counts[CoverFinding::Unavailable]) + u'.';
    if (done < total) {
        m_work.setStatus(QStringLiteral("Przerwano. Sprawdzono albumy: ") + QString::number(done)
            + QStringLiteral(" z ") + QString::number(total) + QStringLiteral(". ") + result);
        setAlert({}, losses);
        return;
    }
    m_work.setStatus(result);
    setAlert(result + QStringLiteral("\nPrzy pozostałych albumach użyj „Znajdź w sieci…” lub wybierz własny obraz."),
        losses);
}
