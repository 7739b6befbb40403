#include "ui/LocalPath.h"

#include <QSysInfo>

namespace {

/// RFC 8089, section 2: no host, "localhost" or this computer's own name. Some file managers write the last.
bool isThisComputer(const QString &host)
{
    return host.isEmpty() || host == QStringLiteral("localhost")
        || host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

} // namespace

std::optional<std::filesystem::path> localPath(const QUrl &url)
{
    if (!url.isLocalFile() || !isThisComputer(url.host())) {
        return std::nullopt;
    }
    const QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (!bytes.startsWith('/') || bytes.contains('\0')) {
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
