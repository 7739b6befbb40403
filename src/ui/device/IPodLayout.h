// Where the parts of a drawn iPod are. Pure values, in logical pixels from the body's top left corner.
#pragma once

#include "model/IPodProfile.h"

#include <QRectF>
#include <QSizeF>

#include <optional>

struct IPodLayout {
    QSizeF body;
    std::optional<QRectF> screen;
    std::optional<QRectF> wheel;

    /// The body as large as `width` and `maxHeight` allow. Its edges and the screen's are on pixels of a display that
    /// has `pixelRatio` of them to a logical one.
    [[nodiscard]] static IPodLayout of(
        const IPodProfile &profile, double width, double maxHeight, double pixelRatio = 1);
};
