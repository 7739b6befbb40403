#include "platform/Desktop.h"

#include "platform/Files.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>

namespace Desktop {

namespace {

constexpr int fileManagerPatienceMilliseconds = 10'000; // it may have to be started

/// A file URI of the path's own bytes (RFC 8089, appendix B; RFC 3986, section 2.1). QUrl::fromLocalFile() would lose
/// bytes that are not UTF-8.
QByteArray fileUri(const std::filesystem::path &path)
{
    const std::string &bytes = path.native();
    return "file://" + QByteArray(bytes.data(), qsizetype(bytes.size())).toPercentEncoding("/");
}

} // namespace

bool open(const std::filesystem::path &path)
{
    // Qt starts the desktop's opener detached, so that a slow one holds up nobody.
    return QDesktopServices::openUrl(QUrl::fromEncoded(fileUri(Files::standardised(path)), QUrl::StrictMode));
}

void reveal(const std::filesystem::path &path)
{
    // freedesktop.org's File Manager D-Bus Interface: ShowItems(uris, startup id).
    const std::filesystem::path item = Files::standardised(path);
    QDBusMessage request = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    request << QStringList {QString::fromLatin1(fileUri(item))} << QString();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        open(item.parent_path()); // a call on no bus would never be answered
        return;
    }
    const QDBusPendingCall call = bus.asyncCall(request, fileManagerPatienceMilliseconds);

    auto *watcher = new QDBusPendingCallWatcher(call, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, item] {
        watcher->deleteLater();
        if (watcher->isError()) {
            open(item.parent_path());
        }
    });
}

} // namespace Desktop
