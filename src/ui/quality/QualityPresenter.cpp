#include "ui/quality/QualityPresenter.h"

#include "quality/CollectionQuality.h"

#include "ui/words/Localization.h"

#include "platform/desktop/Desktop.h"

#include <QGuiApplication>
#include <QPointer>

#include <algorithm>

namespace {

const QString everything = QStringLiteral("Wszystko");

} // namespace

QualityPresenter::QualityPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_filter(everything)
{
    connect(&m_model, &MarluneModel::libraryOnDeviceChanged, this, &QualityPresenter::forget);
    m_inspection.follow(
        m_model, &MarluneModel::sectionChanged, &MarluneModel::libraryOnDeviceChanged, &MarluneModel::tracksChanged);
    connect(&m_model, &MarluneModel::artworkChanged, this, [this] {
        if (!m_model.busy()) { // otherwise more may follow, and the job's end is soon enough
            m_inspection.start();
        }
    });
    connect(&m_model, &MarluneModel::busyChanged, this, [this] {
        if (m_model.busy() && m_model.libraryOnDevice()) {
            abandonInspection(); // an eject would find the device's files in use
        } else if (!m_model.busy()) {
            m_inspection.start(); // the job may have changed files
        }
    });
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) { // and so may the user, in another program
            m_inspection.start();
        }
    });
    m_change.follow(m_model, &MarluneModel::sectionChanged, &MarluneModel::tracksChanged,
        &MarluneModel::libraryOnDeviceChanged, &MarluneModel::deviceChanged, &MarluneModel::busyChanged,
        &MarluneModel::duplicateStatusChanged);
    connect(&m_model, &MarluneModel::duplicateIssuesChanged, this, &QualityPresenter::takeDuplicates);
}

QStringList QualityPresenter::kinds() const
{
    QStringList kinds;
    std::transform(allQualityKinds.begin(), allQualityKinds.end(), std::back_inserter(kinds), qualityKindText);
    return kinds;
}

QStringList QualityPresenter::filters() const
{
    return QStringList(everything) + kinds();
}

QStringList QualityPresenter::counts() const
{
    QStringList counts;
    for (const QualityKind kind : allQualityKinds) {
        const bool isDuplicates = kind == QualityKind::Duplicates;
        const bool isKnown = isDuplicates ? m_model.duplicatesChecked() : m_inspected;
        const auto found = isDuplicates
            ? std::ptrdiff_t(m_model.duplicateIssues().size())
            : std::count_if(m_found.begin(), m_found.end(), [&](const auto &issue) { return issue->kind == kind; });
        counts.append(isKnown && !withoutMusic() ? QString::number(found) : QStringLiteral("—"));
    }
    return counts;
}

void QualityPresenter::setFilter(const QString &filter)
{
    if (m_filter != filter) {
        m_filter = filter;
        refresh();
    }
}

bool QualityPresenter::lacksDuplicateCheck() const
{
    return m_filter == qualityKindText(QualityKind::Duplicates) && !m_model.duplicatesChecked();
}

bool QualityPresenter::clean() const
{
    return !withoutMusic() && m_inspected && !lacksDuplicateCheck();
}

QString QualityPresenter::emptyTitle() const
{
    const QString title = withoutMusic() ? QStringLiteral("Najpierw odczytaj kolekcję")
        : lacksDuplicateCheck()          ? m_model.duplicateStatus()
        : !m_inspected                   ? QStringLiteral("Sprawdzam kolekcję…")
                                         : QStringLiteral("Brak problemów w tej kategorii");
    return AppLocalizer::text(title);
}

QString QualityPresenter::emptyDetail() const
{
    if (!clean()) {
        return {};
    }
    if (m_filter == qualityKindText(QualityKind::Duplicates)) {
        return AppLocalizer::text(m_model.duplicateStatus());
    }
    return m_model.duplicatesChecked()
        ? QString()
        : AppLocalizer::text(QStringLiteral("Dokładne duplikaty wymagają osobnego sprawdzenia."));
}

QualityPresenter::~QualityPresenter()
{
    abandonInspection();
}

void QualityPresenter::abandonInspection()
{
    m_inspecting.request_stop();
    m_inspecting = std::stop_source();
}

void QualityPresenter::forget()
{
    abandonInspection();
    m_inspected = false;
    m_found.clear();
    refresh();
}

void QualityPresenter::inspectIfShown()
{
    if (isShown()) {
        runInspection();
    }
}

void QualityPresenter::refreshIfShown()
{
    if (isShown()) {
        refresh();
    }
}

QCoro::Task<> QualityPresenter::runInspection()
{
    const QPointer<QualityPresenter> self(this);
    abandonInspection();
    const std::stop_token stop = m_inspecting.get_token();
    const std::optional<Device> &device = m_model.device();
    const auto root = m_model.libraryOnDevice() && device ? std::optional(device->root) : std::nullopt;
    auto work = [tracks = m_model.sharedTracks(), root, stop] {
        IssueListModel::Issues issues;
        for (QualityIssue &issue : CollectionQuality::inspect(*tracks, root, stop)) {
            issues.push_back(std::make_shared<const QualityIssue>(std::move(issue)));
        }
        return issues;
    };
    auto found = co_await attempt(work, JobPriority::Utility);
    if (self && !stop.stop_requested() && found.value) {
        m_found = std::move(*found.value);
        m_inspected = true;
        refresh();
    }
}

void QualityPresenter::takeDuplicates()
{
    m_duplicates.clear();
    for (const QualityIssue &issue : m_model.duplicateIssues()) {
        m_duplicates.push_back(std::make_shared<const QualityIssue>(issue));
    }
    m_change.start();
}

void QualityPresenter::refresh()
{
    IssueListModel::Issues shown;
    if (!withoutMusic()) {
        const auto isShown
            = [this](QualityKind kind) { return m_filter == everything || m_filter == qualityKindText(kind); };
        std::copy_if(m_found.begin(), m_found.end(), std::back_inserter(shown),
            [&](const auto &issue) { return isShown(issue->kind); });
        if (isShown(QualityKind::Duplicates)) {
            shown.insert(shown.end(), m_duplicates.begin(), m_duplicates.end());
        }
    }
    m_issues.show(std::move(shown));
    Q_EMIT changed();
}

std::shared_ptr<const Album> QualityPresenter::albumOf(int row) const
{
    const auto issue = m_issues.issue(row);
    return issue ? m_model.albumWith(issue->tracks.front().id) : nullptr;
}

void QualityPresenter::openAlbum(int row)
{
    if (const auto album = albumOf(row)) {
        m_model.setOpenAlbum(*album);
    }
}

void QualityPresenter::lookUpCover(int row)
{
    if (const auto album = albumOf(row)) {
        m_model.setCoverLookup(*album);
    }
}

void QualityPresenter::chooseCover(int row, bool current)
{
    if (const auto album = albumOf(row)) {
        m_model.chooseArtwork(*album, current);
    }
}

void QualityPresenter::reveal(int row) const
{
    if (const auto issue = m_issues.issue(row)) {
        std::vector<std::filesystem::path> files;
        for (const Track &track : issue->tracks) {
            files.push_back(track.url);
        }
        Desktop::reveal(files);
    }
}
