// Which rows of a list are selected, which is the current one, and where the keys and clicks of a list take them.
//
// Rows are places from 0 on. A bit a row: every call is well below a millisecond for 100,000 of them. Plain values, of
// the UI thread. Calls about a row that is not there change nothing.
#pragma once

#include <Qt>

#include <utility>
#include <vector>

class RowSelection {
public:
    /// The rows that a call may have changed, both included; second < first: none.
    using Span = std::pair<int, int>;

    /// Another list of so many rows: nothing is selected, none is current.
    void reset(int rowCount);

    [[nodiscard]] int rowCount() const { return int(m_selected.size()); }
    [[nodiscard]] bool contains(int row) const { return isRow(row) && m_selected[std::size_t(row)]; }
    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] std::vector<int> rows() const; ///< ascending
    /// Where the keyboard is, selected or not; -1 for none.
    [[nodiscard]] int current() const { return m_current; }

    // Each of these makes its row the current one.
    Span only(int row);
    Span toggle(int row);
    /// Selects all from the anchor to `row`; what else is selected stays so with `keepRest` alone.
    Span extendTo(int row, bool keepRest);
    void setCurrent(int row);

    Span all();
    Span clear();

    /// As a click with these modifiers does: Control toggles, Shift extends, both add an extension.
    Span click(int row, Qt::KeyboardModifiers modifiers);
    /// As a key that leads to `row` does: Control alone moves without selecting.
    Span walk(int row, Qt::KeyboardModifiers modifiers);

    // The list has changed: what is still there stays selected, anchor and current with it. Where the current one is
    // gone, the one behind it is, or the last.
    void insertRows(int first, int count);
    void removeRows(int first, int count);
    /// The list is one of `rowCount` rows, in which the row that was i is newRows[i], or gone: -1.
    void remap(const std::vector<int> &newRows, int rowCount);

private:
    [[nodiscard]] bool isRow(int row) const { return row >= 0 && row < rowCount(); }
    void set(int row, bool selected);
    /// The smallest span that holds all selected rows.
    [[nodiscard]] Span extent() const;

    std::vector<bool> m_selected;
    int m_count = 0;
    int m_current = -1;
    int m_anchor = -1; ///< where an extension starts; -1: nowhere
};
