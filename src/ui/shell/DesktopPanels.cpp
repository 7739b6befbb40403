#include "ui/shell/DesktopPanels.h"

#include "ui/LocalPath.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace {

QUrl existingFolder(QStandardPaths::StandardLocation location)
{
    const QString folder = QStandardPaths::writableLocation(location);
    return QUrl::fromLocalFile(QFileInfo(folder).isDir() ? folder : QDir::homePath());
}

/// Some desktops' dialogs tell the cases apart.
QString inBothCases(const QString &patterns)
{
    return patterns + u' ' + patterns.toUpper();
}

} // namespace

DesktopPanels::DesktopPanels(QObject *parent)
    : QObject(parent)
{
}

void DesktopPanels::open(const Request &request, Answer answered)
{
    m_request = request;
    m_answered = std::move(answered);
    Q_EMIT asked(request.pictures ? ChoosePictures
            : request.archives    ? ChooseArchives
            : !request.folders    ? ChooseFiles
            : request.files       ? ChooseFilesOrFolder
                                  : ChooseFolder);
}

QUrl DesktopPanels::startFolder()
{
    return existingFolder(QStandardPaths::MusicLocation);
}

QUrl DesktopPanels::picturesFolder()
{
    return existingFolder(QStandardPaths::PicturesLocation);
}

QString DesktopPanels::picturePatterns()
{
    return inBothCases(QStringLiteral("*.jpg *.jpeg *.png *.bmp *.gif *.webp *.tif *.tiff"));
}

QUrl DesktopPanels::downloadsFolder()
{
    return existingFolder(QStandardPaths::DownloadLocation);
}

QString DesktopPanels::archivePatterns()
{
    return inBothCases(QStringLiteral("*.zip"));
}

void DesktopPanels::answer(const QList<QUrl> &chosen)
{
    std::vector<std::filesystem::path> paths;
    for (const QUrl &url : chosen) {
        if (const std::optional<std::filesystem::path> path = localPath(url)) {
            paths.push_back(*path);
        }
    }
    // The answer may well lead to the next question.
    if (const Answer answered = std::exchange(m_answered, {}); answered && !paths.empty()) {
        answered(std::move(paths));
    }
}

void DesktopPanels::cancel()
{
    m_answered = {};
}
