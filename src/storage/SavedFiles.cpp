#include "storage/SavedFiles.h"

#include "storage/Blocks.h"
#include "storage/ComputerDisk.h"

#include "platform/Files.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

void copyRegular(const std::filesystem::path &file, const std::filesystem::path &copy)
{
    const Files::Descriptor source = Files::openForReading(file, Files::Links::Refuse);
    const Files::Descriptor destination = Files::createExclusively(copy);
    Storage::forEachBlock(
        source.get(), [&](std::span<const char> block) { Files::writeFully(destination.get(), block); });
    Files::synchronise(destination.get());
}

} // namespace

namespace Storage {

std::optional<std::filesystem::path> SavedFiles::copyOf(const std::filesystem::path &file) const
{
    const auto found = copies.find(file);
    return found == copies.end() ? std::nullopt : std::optional(found->second);
}

SavedFiles saveFiles(
    std::span<const std::filesystem::path> files, const std::filesystem::path &backupRoot, const SavedNames &names)
{
    SavedFiles saved {.folder = backupRoot / (names.folderPrefix.toStdString() + Files::newIdentifier()), .copies = {}};
    onComputersDisk(saved.folder, [&] {
        Files::makeFolders(saved.folder);
        QJsonObject manifest;
        for (const std::filesystem::path &file : files) {
            const std::string name = Files::newIdentifier() + names.fileSuffix.toStdString();
            copyRegular(file, saved.folder / name);
            saved.copies.emplace(file, saved.folder / name);
            manifest.insert(QString::fromStdString(name), Files::text(file));
        }
        const QByteArray json = QJsonDocument(manifest).toJson(QJsonDocument::Compact);
        Files::writeAtomically(saved.folder / "manifest.json", json);
        Files::synchroniseFolder(saved.folder);
    });
    return saved;
}

} // namespace Storage
