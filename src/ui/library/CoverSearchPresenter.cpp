#include "ui/library/CoverSearchPresenter.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/MarluneError.h"
#include "platform/desktop/Desktop.h"

#include <QPointer>

CoverSearchPresenter::CoverSearchPresenter(MarluneModel &model, const std::shared_ptr<CoverStore> &covers,
    std::optional<bool> onDeviceOverride, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_onDeviceOverride(onDeviceOverride)
    , m_results(model.coverSearch(), covers)
{
    connect(&m_model, &MarluneModel::coverDownloaded, this,
        [this](const QString &albumId) { m_downloaded = m_downloading && albumId == m_albumId; });
    connect(&m_model, &MarluneModel::busyChanged, this, &CoverSearchPresenter::followDownload);
}

void CoverSearchPresenter::followCoverLookup()
{
    m_follows = true;
    const auto follow = [this] {
        if (m_model.coverLookup()) {
            open(*m_model.coverLookup());
        } else {
            dismiss();
        }
    };
    connect(&m_model, &MarluneModel::coverLookupChanged, this, follow);
    follow();
}

void CoverSearchPresenter::open(const Album &album)
{
    if (m_wanted && album.id() == m_albumId) {
        return;
    }
    clear();
    m_wanted = true;
    m_albumId = album.id();
    m_artist = Wording::artistText(album.artist);
    m_title = album.title;
    Q_EMIT changed();
}

void CoverSearchPresenter::dismiss()
{
    if (!m_wanted) {
        return;
    }
    clear();
    m_wanted = false;
    Q_EMIT changed();
    if (m_follows) {
        m_model.setCoverLookup(std::nullopt);
    }
}

void CoverSearchPresenter::clear()
{
    m_searching.reset();
    m_results.show({});
    m_message.clear();
    m_downloading = false;
}

void CoverSearchPresenter::setArtist(const QString &artist)
{
    if (m_artist != artist) {
        m_artist = artist;
        Q_EMIT changed();
    }
}

void CoverSearchPresenter::setAlbumTitle(const QString &title)
{
    if (m_title != title) {
        m_title = title;
        Q_EMIT changed();
    }
}

QString CoverSearchPresenter::message() const
{
    return AppLocalizer::text(m_message);
}

void CoverSearchPresenter::search()
{
    if (m_wanted) {
        m_searching = std::make_unique<QObject>();
        m_results.show({});
        m_message.clear();
        Q_EMIT changed();
        runSearch();
    }
}

QCoro::Task<> CoverSearchPresenter::runSearch()
{
    const QPointer<QObject> living(m_searching.get()); // gone where this search has been overtaken
    std::vector<CoverCandidate> found;
    std::exception_ptr failure;
    try {
        auto searching = m_model.coverSearch().search(m_artist, m_title, *m_searching);
        found = co_await searching;
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    if (!living) {
        co_return;
    }
    m_searching.reset();
    if (failure) {
        m_message = describeFailure(failure);
    } else if (found.empty()) {
        m_message = QStringLiteral("Brak wyników. Popraw nazwy lub wybierz obraz ręcznie w albumie.");
    } else {
        m_message = QStringLiteral("Wyniki: ") + QString::number(found.size())
            + QStringLiteral(". Brak grafiki oznacza, że wydanie nie ma okładki w archiwum.");
    }
    m_results.show(found);
    Q_EMIT changed();
}

void CoverSearchPresenter::download(int row)
{
    const std::optional<CoverCandidate> candidate = m_results.candidate(row);
    if (!candidate || !canDownload()) {
        return;
    }
    if (const auto album = m_model.albumOf(m_albumId, m_onDeviceOverride)) {
        m_message.clear();
        m_downloading = true;
        m_downloaded = false;
        m_model.downloadCover(*candidate, *album, m_onDeviceOverride);
    } else {
        m_message = QStringLiteral("Album nie jest już dostępny w tej bibliotece.");
    }
    Q_EMIT changed();
}

void CoverSearchPresenter::followDownload()
{
    if (m_downloading && !m_model.busy()) {
        m_downloading = false;
        if (m_downloaded) {
            dismiss();
            return;
        }
        m_message = m_model.status(); // why not
    }
    Q_EMIT changed();
}

void CoverSearchPresenter::openSource(int row) const
{
    if (const std::optional<CoverCandidate> candidate = m_results.candidate(row)) {
        Desktop::openAddress(candidate->pageURL(m_model.coverSearch().services()));
    }
}
