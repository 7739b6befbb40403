#include "ui/library/LibraryPresenter.h"

#include "ui/LocalPath.h"
#include "ui/lists/FileDrag.h"
#include "ui/words/Localization.h"

namespace {

QStringList textsOf(const auto &values, const auto &textOf)
{
    QStringList texts;
    std::transform(values.begin(), values.end(), std::back_inserter(texts), textOf);
    return texts;
}

} // namespace

LibraryPresenter::LibraryPresenter(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_albums(model, std::move(covers))
    , m_tracks(model)
    , m_folders(model)
{
    connect(&m_model, &MarluneModel::browsingChanged, this, [this] {
        m_isOutdated = true;
        m_change.start();
    });
    connect(&m_model, &MarluneModel::sectionChanged, this, &LibraryPresenter::refreshIfDue);
    m_change.follow(m_model, &MarluneModel::busyChanged);
    connect(&m_model, &MarluneModel::viewModeChanged, this, &LibraryPresenter::viewChanged);
    connect(&m_model, &MarluneModel::deviceChanged, this, &LibraryPresenter::canReadDeviceChanged);
    connect(&m_model, &MarluneModel::busyChanged, this, &LibraryPresenter::canReadDeviceChanged);
    refreshContent();
}

QStringList LibraryPresenter::viewModes() const
{
    return textsOf(allViewModes, viewModeText);
}

QStringList LibraryPresenter::formats() const
{
    return textsOf(allFormatFilters, formatFilterText);
}

QStringList LibraryPresenter::sortModes() const
{
    return textsOf(allSortModes, sortModeText);
}

QString LibraryPresenter::counts() const
{
    return AppLocalizer::text(QStringLiteral("Albumy: ") + QString::number(m_content.albums)
        + QStringLiteral(" · Utwory: ") + QString::number(m_content.tracks));
}

bool LibraryPresenter::canReadDevice() const
{
    return m_model.device().has_value() && !m_model.busy();
}

void LibraryPresenter::refreshIfDue()
{
    if (m_isOutdated && (m_model.section() == Section::Music || !m_model.busy())) {
        refreshContent();
    }
}

void LibraryPresenter::refreshContent()
{
    m_isOutdated = false;
    const std::shared_ptr<const TrackMatches> matches = m_model.trackMatches();
    const Content content {.albums = m_model.albums()->size(),
        .tracks = matches->count,
        .withoutMusic = m_model.activeTracks().empty(),
        .highResolution = matches->highResolution};
    if (m_content != content) {
        m_content = content;
        Q_EMIT contentChanged();
    }
}

bool LibraryPresenter::takesDrop(const QStringList &formats) const
{
    return !FileDrag::isOwn(formats);
}

void LibraryPresenter::importDropped(const QList<QUrl> &urls)
{
    if (const std::vector<std::filesystem::path> paths = localPaths(urls); !paths.empty()) {
        m_model.importURLs(paths, false, true);
    }
}
