// Backups of a device's settings: where they go, and the job that makes one.
#include "model/Model.h"

#include "storage/Backup.h"
#include "storage/DeviceAnchor.h"

#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <QDateTime>
#include <QPointer>

std::filesystem::path MarluneModel::newBackupURL() const
{
    const QString moment = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
    // The last part keeps two backups of one second apart.
    return backupRoot() / (moment.toStdString() + '_' + Files::newIdentifier().substr(0, 6));
}

void MarluneModel::backup()
{
    if (!m_device || m_work.busy()) {
        return;
    }
    m_work.begin(QStringLiteral("Tworzę kopię ustawień…"), RunningWork::Ends::BetweenFiles);
    runBackup(m_device->root, newBackupURL());
}

QCoro::Task<> MarluneModel::runBackup(std::filesystem::path root, std::filesystem::path destination)
{
    const QPointer<MarluneModel> self(this);
    auto work = [root, destination, stop = m_work.stopToken()] {
        Files::makeFolders(destination.parent_path());
        return Storage::backup(Storage::DeviceAnchor(root), destination, stop);
    };
    const auto outcome = co_await attempt(work);
    if (!self) {
        co_return;
    }
    if (outcome.failure) {
        m_work.setAlert(describeFailure(outcome.failure));
        m_work.setStatus(QStringLiteral("Nie udało się zapisać kopii"));
    } else if (!*outcome.value) {
        m_work.setStatus(QStringLiteral("Przerwano tworzenie kopii. Niczego nie zapisano."));
    } else {
        m_work.setStatus(QStringLiteral("Kopia ustawień zapisana na Macu"));
    }
    m_work.end();
    rediscover();
}
