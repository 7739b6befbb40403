// What the library's cache keeps of one folder, and the bytes in which it does. Pure; any thread; never throws.
#pragma once

#include "library/FileFacts.h"

#include "platform/files/FileStamp.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

struct RememberedFile {
    FileStamp stamp; ///< its volume aside
    FileFacts facts; ///< without the picture
    QByteArray picture; ///< that one's digest; empty where there is none

    bool operator==(const RememberedFile &) const = default;
};

struct RememberedFolder {
    FileStamp stamp; ///< of the folder when it held these pictures; all 0 where that is not known
    std::vector<std::string> pictures; ///< names of all picture files in it
    std::unordered_map<std::string, RememberedFile> files; ///< by name

    bool operator==(const RememberedFolder &) const = default;

    [[nodiscard]] QByteArray encoded() const;
    /// Absent for what encoded() does not make. Equal texts of different files share their letters.
    [[nodiscard]] static std::optional<RememberedFolder> decoded(QByteArrayView bytes);
};
