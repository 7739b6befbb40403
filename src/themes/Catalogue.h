// The web site that shows how the themes look. It offers no interface for programs: its pages are the format, and
// ThemePreview::parseCatalog() holds it. Here is where it is. No state; any thread.
#pragma once

#include <QString>
#include <QUrl>

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

/// The kind taken where the device does not tell its own.
[[nodiscard]] QString defaultTarget();

} // namespace Catalogue
