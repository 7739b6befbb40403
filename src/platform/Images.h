// Encoded pictures to pixels. No state; any thread.
#pragma once

#include <QByteArray>
#include <QImage>

/// Decodes a picture so that it fits into a square of `side` pixels, its orientation applied; smaller ones are not
/// enlarged. Null where the bytes are no picture or declare a size that is not to be trusted.
[[nodiscard]] QImage decodeImage(const QByteArray &bytes, int side);
