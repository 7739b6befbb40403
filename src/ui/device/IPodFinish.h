// The colours of a drawn iPod, by the name of its finish. Pure values.
#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

struct IPodFinish {
    QColor body;
    QColor ring; ///< of the wheel
    QColor legend; ///< the labels on it
    QColor centre; ///< the button in its middle
    QColor home; ///< the button below a screen that is touched
    bool polished = false; ///< plastic, where the others are anodised metal

    /// A name that is not among names() is white.
    [[nodiscard]] static IPodFinish named(const QString &name);
    /// All finishes that differ.
    [[nodiscard]] static QStringList names();
};
