// Letters typed in a list lead to the row whose name begins with them.
//
// Letters that follow each other within a second belong together. Case is ignored, and so is the way in which an accent
// is composed. A letter without an accent finds those with one too ("l" finds "Łąka"), one with an accent only itself.
// The same single letter typed again leads to the next such row. UI thread.
#pragma once

#include <QString>

#include <chrono>
#include <functional>

class TypeAhead {
public:
    using Clock = std::chrono::steady_clock;
    using NameOf = std::function<QString(int row)>;

    explicit TypeAhead(std::function<Clock::time_point()> clock = Clock::now)
        : m_clock(std::move(clock))
    {
    }

    /// Takes the text of a key. Returns the first row that fits, from `current` on and round to it again; -1 where
    /// there is none.
    [[nodiscard]] int type(const QString &text, int current, int rowCount, const NameOf &nameOf);
    /// Whether a blank would belong to what is being typed.
    [[nodiscard]] bool isUnderWay() const;
    /// Whether a key with this text is one to look for. `modifiers` are Qt::KeyboardModifiers.
    [[nodiscard]] bool takes(const QString &text, int modifiers) const;
    /// What comes next begins anew.
    void end() { m_typed.clear(); }

    /// Whether `name` begins with `typed` in the way described above.
    [[nodiscard]] static bool begins(const QString &name, const QString &typed);

private:
    std::function<Clock::time_point()> m_clock;
    QString m_typed;
    Clock::time_point m_last;
    int m_found = -1; ///< the row that m_typed led to last
};
