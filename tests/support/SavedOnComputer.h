// What the manifests below a backup root say is saved: the file's path on the device, and the bytes of its copy.
#pragma once

#include "SampleDevice.h"

#include "platform/files/Files.h"

#include <QJsonDocument>
#include <QJsonObject>

inline std::map<std::filesystem::path, std::string> savedOnComputer(const std::filesystem::path &backupRoot)
{
    std::map<std::filesystem::path, std::string> saved;
    const auto files = exists(backupRoot) ? filesBelow(backupRoot) : std::map<std::string, std::string>();
    for (const auto &[name, bytes] : files) {
        const QJsonObject manifest = QJsonDocument::fromJson(QByteArray::fromStdString(bytes)).object();
        for (auto copy = manifest.begin(); copy != manifest.end(); ++copy) {
            const std::filesystem::path set = std::filesystem::path(name).parent_path();
            saved[Files::fromText(copy->toString())] = files.at(set / Files::fromText(copy.key()));
        }
    }
    return saved;
}
