// Files dragged out of a list: for the file manager as files to copy, for the program's own windows as tracks.
//
// Files leave byte for byte, whatever their names are, and only to be copied: nothing that is dragged is moved or
// linked. UI thread.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QFont>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <filesystem>
#include <memory>
#include <vector>

class QMimeData;
class QObject;

namespace FileDrag {

struct Load {
    std::vector<std::filesystem::path> paths;
    std::vector<QUuid> tracks; ///< the ids of the same, in any order
    bool onDevice = false; ///< they lie on the device
    // The card at the pointer.
    QString title {}; ///< of a single one
    QColor ground {};
    QColor ink {};
    QFont font {};
};

/// What hangs at the pointer. The list of files is written when somebody asks for it.
[[nodiscard]] std::unique_ptr<QMimeData> mimeData(Load files);

/// Drags them until they are let go; returns then. Nothing happens without files.
void run(QObject &source, Load files);

/// Whether a drag with these formats comes from the program itself, and from which side of its library.
[[nodiscard]] bool isOwn(const QStringList &formats);
[[nodiscard]] bool isFromDevice(const QStringList &formats);
/// The format under which a drag carries the computer's tracks, and the tracks in its bytes.
[[nodiscard]] QString trackFormat();
[[nodiscard]] QSet<QUuid> tracks(const QByteArray &bytes);

} // namespace FileDrag
