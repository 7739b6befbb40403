#include "ui/LocalPath.h"

std::optional<std::filesystem::path> localPath(const QUrl &url)
{
    if (!url.isLocalFile()) {
        return std::nullopt;
    }
    const QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (bytes.isEmpty() || bytes.contains('\0')) {
        return std::nullopt;
    }
    return std::filesystem::path(bytes.toStdString());
}

std::vector<std::filesystem::path> localPaths(const QList<QUrl> &urls)
{
    std::vector<std::filesystem::path> paths;
    for (const QUrl &url : urls) {
        if (const std::optional<std::filesystem::path> path = localPath(url)) {
            paths.push_back(*path);
        }
    }
    return paths;
}

QUrl fileUrl(const std::filesystem::path &path)
{
    const std::string &bytes = path.native();
    return QUrl::fromEncoded("file://" + QByteArray(bytes.data(), qsizetype(bytes.size())).toPercentEncoding("/"));
}
