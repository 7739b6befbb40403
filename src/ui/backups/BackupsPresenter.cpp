#include "ui/backups/BackupsPresenter.h"

#include "storage/Backup.h"

#include "ui/words/Localization.h"
#include "ui/words/Wording.h"

#include "platform/desktop/Desktop.h"
#include "platform/files/Files.h"
#include "platform/text/ByteCount.h"

namespace {

/// When the copy was made, by its name; invalid where that does not tell.
QDateTime momentOf(const QString &name)
{
    constexpr qsizetype length = 19;
    return QDateTime::fromString(name.left(length), QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
}

QString contentOf(const QString &name)
{
    return name.startsWith(QLatin1String("Covers-"))     ? QStringLiteral("Okładki")
        : name.startsWith(QLatin1String("MacMetadata-")) ? QStringLiteral("Pliki macOS")
        : momentOf(name).isValid()                       ? QStringLiteral("Ustawienia i motywy")
                                                         : QString();
}

} // namespace

BackupsPresenter::BackupsPresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_sizes(Storage::backupSize)
    , m_backups([](const std::filesystem::path &folder) { return Wording::fileName(Files::name(folder)); },
          [this](const std::filesystem::path &folder) { return detail(folder); })
{
    connect(&m_model, &MarluneModel::deviceChanged, this, &BackupsPresenter::canBackUpChanged);
    connect(&m_model, &MarluneModel::busyChanged, this, &BackupsPresenter::canBackUpChanged);
    m_change.follow(m_model, &MarluneModel::sectionChanged, &MarluneModel::backupsChanged);
    connect(&m_sizes, &FigureReader::landed, &m_backups, &FileListModel::refreshDetails);
}

QString BackupsPresenter::detail(const std::filesystem::path &backup) const
{
    const QString name = Files::name(backup);
    const FigureReader::Figure *size = m_sizes.figure(backup);
    QDateTime made = momentOf(name);
    if (!made.isValid() && size && size->changedNanoseconds > 0) {
        made = QDateTime::fromMSecsSinceEpoch(size->changedNanoseconds / 1'000'000);
    }
    QStringList facts {AppLocalizer::text(contentOf(name)), made.isValid() ? Wording::moment(made) : QString(),
        size && size->value ? byteCount(*size->value) : QString(),
        size && !size->value ? AppLocalizer::text(QStringLiteral("Nie udało się odczytać")) : QString()};
    facts.removeAll(QString());
    return facts.join(QStringLiteral(" · "));
}

void BackupsPresenter::refresh()
{
    if (m_model.section() == Section::Backups) {
        m_backups.show(m_model.backups());
        m_sizes.read(m_model.backups());
    } else {
        m_sizes.stop();
    }
}

void BackupsPresenter::open(int row) const
{
    if (const auto folder = m_backups.file(row)) {
        Desktop::open(*folder);
    }
}
