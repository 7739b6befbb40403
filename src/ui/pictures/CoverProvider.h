// Covers for QML: "image://cover/NAME/RADIUS", NAME being the store's, RADIUS that of the corners in thousandths of the
// side. The picture fills a square of the requested size. "image://cover/NAME/whole": all of it, within that square.
// "image://cover/NAME/wash/LIGHTNESS/CORNER": no picture but its colours, all of one lightness (per cent), as a soft light
// from the upper left on a sheet of the requested size with such corners (pixels); texts lie on it as on a plain ground.
//
// Decoding runs on threads of its own, so that scrolling waits for no picture; what was decoded last is kept. A cover
// that is no picture comes out as one transparent pixel, which the page takes as "show the stand-in".
#pragma once

#include "ui/pictures/CoverStore.h"
#include "ui/pictures/DrawingProvider.h"

class CoverProvider : public DrawingProvider {
public:
    explicit CoverProvider(std::shared_ptr<const CoverStore> store);

    /// `encoded` filling a square of `side` pixels, corners rounded by `radius` pixels. Null if it is no picture.
    [[nodiscard]] static QImage draw(const QByteArray &encoded, int side, double radius);
    /// Its wash, with `lightness` from 0 to 1. Null if it is no picture.
    [[nodiscard]] static QImage wash(const QByteArray &encoded, QSize size, double lightness, double corner);
};
