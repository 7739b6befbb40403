// What lies behind the carousel's covers, for QML: "image://stage/ground", grey from above to black, to be tiled
// across; "image://stage/light", the light on the floor, to be stretched. Both are so faint that a screen's steps of
// colour would show as bands: grain hides them.
#pragma once

#include "ui/pictures/DrawingProvider.h"

class StageProvider : public DrawingProvider {
public:
    /// Pixels of the light's picture to one logical one, before it is stretched; and how far it goes beyond its
    /// ellipse.
    static constexpr double lightScale = 0.5;
    static constexpr int lightMargin = 135; // three times the blur

    StageProvider();

    [[nodiscard]] static QImage ground();
    [[nodiscard]] static QImage light();
};
