// A cover as it stands in the carousel: the square picture and below it the upper part of its reflection, over its
// shadow. Pure; any thread.
#pragma once

#include <QImage>

namespace FlowCard {

/// Pixels of clear margin around a card, by which its edges are smooth however it is turned.
constexpr int margin = 2;

/// The card of a square picture; `margin` is added on each side. Null for a null one.
[[nodiscard]] QImage draw(const QImage &picture);

/// A picture for an album without a cover, or for one whose cover is on its way (`awaited`).
[[nodiscard]] QImage standIn(int side, bool awaited);

} // namespace FlowCard
