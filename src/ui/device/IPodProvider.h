// Drawn iPods for QML: "image://ipod/PROFILE/FINISH/WIDTH/HEIGHT/RATIO/KIND".
//
// WIDTH and HEIGHT are what the body may take in logical pixels, RATIO the device pixels to one; KIND is "lit" or
// "blank" for the body with such a screen, "glass" for what lies over the screen's picture.
#pragma once

#include "ui/pictures/DrawingProvider.h"

class IPodProvider : public DrawingProvider {
public:
    IPodProvider();
};
