#include "platform/desktop/Desktop.h"

#include "platform/files/Files.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace Desktop {

namespace {

constexpr int fileManagerTimeoutMilliseconds = 10'000; // it may have to be started

/// A file URI of the path's own bytes (RFC 8089, appendix B; RFC 3986, section 2.1). QUrl::fromLocalFile() would lose
/// bytes that are not UTF-8.
QByteArray fileUri(const std::filesystem::path &path)
{
    const std::string &bytes = path.native();
    return "file://" + QByteArray(bytes.data(), qsizetype(bytes.size())).toPercentEncoding("/");
}

struct Selection {
    std::vector<std::filesystem::path> items;
    std::vector<std::filesystem::path> folders;
};

/// The items of the first few folders, in their order.
Selection firstFolders(const std::vector<std::filesystem::path> &paths)
{
    constexpr std::size_t maxFolders = 5;
    Selection chosen;
    for (const std::filesystem::path &path : paths) {
        std::filesystem::path item = Files::standardized(path);
        const std::filesystem::path folder = item.parent_path();
        const bool isKnown = std::find(chosen.folders.begin(), chosen.folders.end(), folder) != chosen.folders.end();
        if (!isKnown && chosen.folders.size() < maxFolders) {
            chosen.folders.push_back(folder);
        } else if (!isKnown) {
            continue;
        }
        chosen.items.push_back(std::move(item));
    }
    return chosen;
}

} // namespace

bool open(const std::filesystem::path &path)
{
    // Qt starts the desktop's opener detached, so that a slow one holds up nobody.
    return QDesktopServices::openUrl(QUrl::fromEncoded(fileUri(Files::standardized(path)), QUrl::StrictMode));
}

bool openAddress(const QUrl &address)
{
    return QDesktopServices::openUrl(address);
}

void reveal(const std::vector<std::filesystem::path> &paths)
{
    const auto [items, folders] = firstFolders(paths);
    QStringList uris;
    for (const std::filesystem::path &item : items) {
        uris.append(QString::fromLatin1(fileUri(item)));
    }
    const auto openFolders = [places = folders] { std::for_each(places.begin(), places.end(), open); };
    // freedesktop.org's File Manager D-Bus Interface: ShowItems(uris, startup id).
    QDBusMessage request = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    request << uris << QString();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolders(); // a call on no bus would never be answered
        return;
    }
    const QDBusPendingCall call = bus.asyncCall(request, fileManagerTimeoutMilliseconds);

    auto *watcher = new QDBusPendingCallWatcher(call, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, openFolders] {
        watcher->deleteLater();
        if (watcher->isError()) {
            openFolders();
        }
    });
}

} // namespace Desktop
