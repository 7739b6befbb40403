// The web site that shows how the themes look. It offers no interface for programs: its pages are the format.
#pragma once

#include "themes/ThemePreview.h"

#include <QCoro/QCoroTask>

#include <chrono>

namespace Catalogue {

struct Site {
    QUrl root; ///< where there is none, nothing is asked of any server
    std::chrono::milliseconds silence = std::chrono::seconds(25); ///< after which it counts as out of reach

    /// As the public knows it.
    [[nodiscard]] static Site ofThePublic();
};

/// The list of all themes for a kind of device, such as "ipodvideo".
[[nodiscard]] QUrl listPage(const QUrl &root, const QString &target);

/// The kind taken where the device does not say its own.
[[nodiscard]] QString defaultTarget();

/// The previews that the catalogue at `site` has for these themes, on its page for this kind of device. UI thread;
/// fails as Http::get() does, and with MarluneError where the answer is no page.
[[nodiscard]] QCoro::Task<ThemePreviews> catalog(std::vector<Theme> themes, QString target, Site site, QObject &owner);

// The page's reader (CataloguePage.cpp). No state; any thread.

/// The previews in such a page of a site at `root`. Its themes are known by normalize()d names, and are often of
/// other versions. Never fails; takes time in proportion to the page, whatever it holds.
[[nodiscard]] ThemePreviews parseCatalog(const QString &html, const std::vector<Theme> &themes, const QUrl &root);
/// With the page's entities replaced: the five with names, and decimal ones.
[[nodiscard]] QString decoded(const QString &text);
/// A name's lower-case letters and numbers, for comparisons.
[[nodiscard]] QString normalize(const QString &text);
/// An address of the site. `encoded` is a path, without a solidus in front, and perhaps a query.
[[nodiscard]] QUrl address(const QUrl &root, const QByteArray &encoded);

} // namespace Catalogue
