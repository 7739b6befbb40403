// The archives that tests/data/make_archives.py made, and what is expected of each.
#pragma once

#include "support/TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>
#include <vector>

struct Archive {
    std::string name;
    std::string inspection; ///< what the inspection says; "" of a good archive
    std::string installation; ///< what the installation says, "*" where the words are a tool's own
    std::map<std::string, std::string> files; ///< what a good one brings, below `.rockbox`, with the SHA-256 of each
};

[[nodiscard]] inline fs::path archive(const char *name)
{
    return fs::path(MARLUNE_ARCHIVES) / name;
}

/// All of them. Throws where they have not been made.
inline std::vector<Archive> archives()
{
    const std::string manifest = fileBytes(archive("manifest.json"));
    const QJsonObject entries = QJsonDocument::fromJson(QByteArray::fromStdString(manifest)).object();
    std::vector<Archive> result;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const QJsonArray expected = entry.value().toArray();
        result.push_back({entry.key().toStdString(), expected[0].toString().toStdString(),
            expected[1].toString().toStdString(), {}});
        const QJsonObject files = expected[2].toObject();
        for (auto file = files.begin(); file != files.end(); ++file) {
            result.back().files[file.key().toStdString()] = file.value().toString().toStdString();
        }
    }
    return result;
}
