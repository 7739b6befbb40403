#include "themes/Catalogue.h"

#include "platform/MarluneError.h"
#include "platform/tasks/Background.h"
#include "platform/web/Http.h"

namespace {

/// Bytes; many times what the list of all themes takes.
constexpr std::int64_t maxPageBytes = 20'000'000;

} // namespace

namespace Catalogue {

Site Site::ofThePublic()
{
    return {QUrl(QStringLiteral("https://themes.rockbox.org"))};
}

QString defaultTarget()
{
    return QStringLiteral("ipodvideo");
}

QUrl address(const QUrl &root, const QByteArray &encoded)
{
    return QUrl::fromEncoded(root.toEncoded(QUrl::StripTrailingSlash) + '/' + encoded, QUrl::StrictMode);
}

QUrl listPage(const QUrl &root, const QString &target)
{
    const QString kind = target.isValidUtf16() ? target : defaultTarget();
    return address(root, "index.php?target=" + QUrl::toPercentEncoding(kind, "!$&'()*+,/:;=?@"));
}

QCoro::Task<ThemePreviews> catalog(std::vector<Theme> themes, QString target, Site site, QObject &owner)
{
    Http::Request request {.url = listPage(site.root, target), .maxBodyBytes = maxPageBytes, .silence = site.silence};
    const Http::Response response = co_await Http::get(request, owner);
    auto parse = [response, themes, root = site.root] {
        if (response.status != 200 || !response.body || !QUtf8StringView(*response.body).isValidUtf8()) {
            throw MarluneError(QStringLiteral("Nie można odczytać katalogu motywów."));
        }
        return parseCatalog(QString::fromUtf8(*response.body), themes, root);
    };
    co_return co_await background(parse, JobPriority::Utility);
}

} // namespace Catalogue
