#include "library/ArtworkPool.h"

#include <QHashFunctions>

#include <algorithm>

namespace {

/// Enough to tell covers apart, cheap for large ones; equality is tested on all bytes.
std::size_t sample(const QByteArray &bytes)
{
    constexpr qsizetype piece = 1024;
    std::size_t hash = qHash(bytes.size());
    for (const qsizetype start : {qsizetype(0), bytes.size() / 2, bytes.size() - piece}) {
        const qsizetype begin = std::max<qsizetype>(0, start);
        const qsizetype count = std::min(piece, bytes.size() - begin);
        hash = qHashBits(bytes.constData() + begin, std::size_t(count), hash);
    }
    return hash;
}

} // namespace

QByteArray ArtworkPool::shared(const QByteArray &bytes)
{
    const std::size_t hash = sample(bytes);
    const std::lock_guard lock(m_guard);
    const auto [begin, end] = m_pictures.equal_range(hash);
    const auto found = std::find_if(begin, end,
        [&](const auto &entry) { return entry.second.constData() == bytes.constData() || entry.second == bytes; });
    return found != end ? found->second : m_pictures.emplace(hash, bytes)->second;
}
