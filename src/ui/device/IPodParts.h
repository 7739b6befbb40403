// The parts that lie on the body of a drawn iPod. Each is drawn at its place in logical pixels; the light comes from
// above. No state; any thread.
#pragma once

#include "ui/device/IPodFinish.h"
#include "ui/device/IPodLayout.h"

#include <QPainter>

namespace IPodParts {

/// Whether the screen has the grey ground of a liquid-crystal display.
[[nodiscard]] bool hasGreyScreen(const IPodProfile &profile);
/// The colour of what the screen shows of itself.
[[nodiscard]] QColor screenInk(const IPodProfile &profile);

/// The screen, sunk into the body, with nothing on it.
void drawScreen(QPainter &painter, const IPodProfile &profile, const IPodFinish &finish, const QRectF &screen);
/// What the screen shows where no picture does; a question mark for a model that is not known.
void drawScreenWords(QPainter &painter, const IPodProfile &profile, const IPodLayout &layout);
/// The glass over all that.
void drawGlass(QPainter &painter, const IPodProfile &profile, const QRectF &screen);

void drawWheel(QPainter &painter, const IPodFinish &finish, const QRectF &wheel, const QString &topLabel);
/// What else the shape has: a row of buttons, a home button, a lamp, marks.
void drawExtras(QPainter &painter, const IPodProfile &profile, const IPodFinish &finish, QSizeF body);

} // namespace IPodParts
