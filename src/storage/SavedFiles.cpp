#include "storage/SavedFiles.h"

#include "storage/ComputerDisk.h"
#include "storage/Writers.h"

#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Storage {

std::optional<std::filesystem::path> SavedFiles::copyOf(const std::filesystem::path &file) const
{
    const auto found = copies.find(file);
    return found == copies.end() ? std::nullopt : std::optional(found->second);
}

Files::Descriptor openUnlinked(const std::filesystem::path &file)
{
    return Files::openForReading(file, Files::Links::Refuse);
}

SavedFiles saveFiles(std::span<const std::filesystem::path> files, const std::filesystem::path &backupRoot,
    const SavedNames &names, const OpenFile &open, const std::stop_token &stop)
{
    SavedFiles saved {.folder = backupRoot / (names.folderPrefix.toStdString() + Files::newIdentifier()), .copies = {}};
    onComputersDisk(saved.folder, [&] {
        Files::makeFolders(saved.folder);
        QJsonObject manifest;
        for (const std::filesystem::path &file : files) {
            if (stop.stop_requested()) {
                break;
            }
            const std::string name = Files::newIdentifier() + names.fileSuffix.toStdString();
            copyToNew(open(file), saved.folder / name);
            saved.copies.emplace(file, saved.folder / name);
            manifest.insert(QString::fromStdString(name), Files::text(file));
        }
        const QByteArray json = QJsonDocument(manifest).toJson(QJsonDocument::Compact);
        Files::writeAtomically(saved.folder / "manifest.json", json);
        Files::syncFolder(saved.folder);
    });
    return saved;
}

} // namespace Storage
