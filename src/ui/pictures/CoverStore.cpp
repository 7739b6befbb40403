#include "ui/pictures/CoverStore.h"

QString CoverStore::nameOf(const QByteArray &encoded)
{
    const std::lock_guard lock(m_mutex);
    QString &name = m_names[encoded.constData()];
    if (name.isEmpty()) {
        name = QString::number(++m_last);
        m_covers.insert(name, encoded);
    }
    return name;
}

std::optional<QByteArray> CoverStore::find(const QString &name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_covers.constFind(name);
    return found != m_covers.constEnd() ? std::optional(*found) : std::nullopt;
}

void CoverStore::prune()
{
    const std::lock_guard lock(m_mutex);
    // Copies are made under the lock alone, so that a buffer held once is the store's own.
    m_covers.removeIf([this](const auto &entry) {
        const bool unused = entry->isDetached();
        if (unused) {
            m_names.remove(entry->constData());
        }
        return unused;
    });
}

qsizetype CoverStore::size() const
{
    const std::lock_guard lock(m_mutex);
    return m_covers.size();
}
