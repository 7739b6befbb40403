#include "ui/lists/RowSelection.h"

#include <algorithm>

namespace {

constexpr RowSelection::Span nothing {0, -1};

RowSelection::Span united(RowSelection::Span a, RowSelection::Span b)
{
    if (a.second < a.first) {
        return b;
    }
    return b.second < b.first ? a : RowSelection::Span {std::min(a.first, b.first), std::max(a.second, b.second)};
}

/// Where a row that others are put in or taken out before is afterwards.
int moved(int row, int first, int count)
{
    return row >= first ? row + count : row;
}

} // namespace

void RowSelection::reset(int rowCount)
{
    m_selected.assign(std::size_t(std::max(0, rowCount)), false);
    m_count = 0;
    m_current = -1;
    m_anchor = -1;
}

std::vector<int> RowSelection::rows() const
{
    std::vector<int> result;
    result.reserve(std::size_t(m_count));
    for (int row = 0; row < rowCount() && int(result.size()) < m_count; ++row) {
        if (m_selected[std::size_t(row)]) {
            result.push_back(row);
        }
    }
    return result;
}

void RowSelection::set(int row, bool selected)
{
    if (m_selected[std::size_t(row)] != selected) {
        m_selected[std::size_t(row)] = selected;
        m_count += selected ? 1 : -1;
    }
}

RowSelection::Span RowSelection::extent() const
{
    if (m_count == 0) {
        return nothing;
    }
    const auto first = std::find(m_selected.begin(), m_selected.end(), true);
    const auto last = std::find(m_selected.rbegin(), m_selected.rend(), true);
    return {int(first - m_selected.begin()), int(m_selected.rend() - last) - 1};
}

RowSelection::Span RowSelection::only(int row)
{
    if (!isRow(row)) {
        return nothing;
    }
    const Span before = clear();
    set(row, true);
    m_current = m_anchor = row;
    return united(before, {row, row});
}

RowSelection::Span RowSelection::toggle(int row)
{
    if (!isRow(row)) {
        return nothing;
    }
    set(row, !contains(row));
    m_current = m_anchor = row;
    return {row, row};
}

RowSelection::Span RowSelection::extendTo(int row, bool keepRest)
{
    if (!isRow(row)) {
        return nothing;
    }
    const int anchor = isRow(m_anchor) ? m_anchor : isRow(m_current) ? m_current : row;
    const Span before = keepRest ? nothing : clear();
    const Span chosen = std::minmax({anchor, row});
    for (int each = chosen.first; each <= chosen.second; ++each) {
        set(each, true);
    }
    m_anchor = anchor;
    m_current = row;
    return united(before, chosen);
}

void RowSelection::setCurrent(int row)
{
    if (isRow(row)) {
        m_current = row;
    }
}

RowSelection::Span RowSelection::all()
{
    m_selected.assign(m_selected.size(), true);
    m_count = rowCount();
    return {0, rowCount() - 1};
}

RowSelection::Span RowSelection::clear()
{
    const Span before = extent();
    m_selected.assign(m_selected.size(), false);
    m_count = 0;
    m_anchor = m_current;
    return before;
}

RowSelection::Span RowSelection::click(int row, Qt::KeyboardModifiers modifiers)
{
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        return extendTo(row, control);
    }
    return control ? toggle(row) : only(row);
}

RowSelection::Span RowSelection::walk(int row, Qt::KeyboardModifiers modifiers)
{
    if (modifiers.testFlag(Qt::ControlModifier) && !modifiers.testFlag(Qt::ShiftModifier)) {
        setCurrent(row);
        return nothing;
    }
    return click(row, modifiers);
}

void RowSelection::insertRows(int first, int count)
{
    if (first < 0 || first > rowCount() || count <= 0) {
        return;
    }
    m_selected.insert(m_selected.begin() + first, std::size_t(count), false);
    m_current = moved(m_current, first, count);
    m_anchor = moved(m_anchor, first, count);
}

void RowSelection::removeRows(int first, int count)
{
    if (first < 0 || count <= 0 || count > rowCount() - first) {
        return;
    }
    const auto begin = m_selected.begin() + first;
    m_count -= int(std::count(begin, begin + count, true));
    m_selected.erase(begin, begin + count);
    const bool anchorGone = m_anchor >= first && m_anchor < first + count;
    m_anchor = anchorGone ? -1 : moved(m_anchor, first, -count);
    m_current = m_current >= first + count ? m_current - count : std::min(std::min(m_current, first), rowCount() - 1);
}

void RowSelection::remap(const std::vector<int> &newRows, int rowCount)
{
    const RowSelection before = std::exchange(*this, {});
    reset(rowCount);
    const auto place = [&](int row) {
        return row >= 0 && row < int(newRows.size()) && isRow(newRows[std::size_t(row)]) ? newRows[std::size_t(row)]
                                                                                         : -1;
    };
    for (const int row : before.rows()) {
        if (const int now = place(row); now >= 0) {
            set(now, true);
        }
    }
    m_anchor = place(before.m_anchor);
    for (int row = before.m_current; row >= 0 && row < before.rowCount() && m_current < 0; ++row) {
        m_current = place(row);
    }
    for (int row = before.m_current; row >= 0 && m_current < 0; --row) {
        m_current = place(row);
    }
}
