// One buffer for equal covers: the tracks of an album mostly carry the same picture each.
#pragma once

#include <QByteArray>

#include <mutex>
#include <unordered_map>
#include <vector>

/// For any thread.
class ArtworkPool {
public:
    /// The pooled bytes equal to `bytes`; these themselves if they are new.
    [[nodiscard]] QByteArray shared(const QByteArray &bytes);

private:
    std::mutex m_guard;
    std::unordered_multimap<std::size_t, QByteArray> m_pictures;
};
