// One buffer for equal covers: the tracks of an album mostly carry the same picture each.
#pragma once

#include <QByteArray>

#include <unordered_map>
#include <vector>

/// Not shared between threads; the byte arrays that it hands out are.
class ArtworkPool {
public:
    /// The pooled bytes equal to `bytes`; these themselves if they are new.
    [[nodiscard]] QByteArray shared(const QByteArray &bytes);

private:
    std::unordered_multimap<std::size_t, QByteArray> m_pictures;
};
