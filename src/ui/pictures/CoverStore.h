// The encoded covers that are on show, under short names that fit into an image's address.
//
// Safe for use from any thread: the pages put covers in, decoding threads take them out.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <mutex>
#include <optional>

class CoverStore {
public:
    /// The name of these bytes. The same shared buffer has the same name for as long as the store holds it.
    [[nodiscard]] QString nameOf(const QByteArray &encoded);
    [[nodiscard]] std::optional<QByteArray> find(const QString &name) const;
    /// Forgets the covers that nothing outside the store holds any more.
    void prune();
    [[nodiscard]] qsizetype size() const;

private:
    mutable std::mutex m_mutex;
    QHash<const char *, QString> m_names; ///< by buffer, which the entry in m_covers keeps alive
    QHash<QString, QByteArray> m_covers;
    quint64 m_last = 0;
};
