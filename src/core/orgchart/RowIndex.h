#pragma once

#include <QHash>

#include <vector>

namespace sable {

// Rows by identifier: a plain array for the small identifiers a chart numbers its members with, a
// hash for any others. Finding and updating the row of each of a hundred thousand members then
// costs an array access each, which keeps edits of many members quick.
class RowIndex
{
public:
    // The row of `id`, or -1.
    int value(int id) const
    {
        if (isDense(id))
            return id < static_cast<int>(m_dense.size()) ? m_dense[static_cast<size_t>(id)] : -1;
        return m_sparse.value(id, -1);
    }
    bool contains(int id) const { return value(id) >= 0; }
    void set(int id, int row)
    {
        if (!isDense(id)) {
            m_sparse.insert(id, row);
            return;
        }
        if (id >= static_cast<int>(m_dense.size()))
            m_dense.resize(static_cast<size_t>(id) + 1, -1);
        m_dense[static_cast<size_t>(id)] = row;
    }
    void remove(int id)
    {
        if (isDense(id)) {
            if (id < static_cast<int>(m_dense.size()))
                m_dense[static_cast<size_t>(id)] = -1;
        } else {
            m_sparse.remove(id);
        }
    }
    void clear()
    {
        m_dense.clear();
        m_sparse.clear();
    }

private:
    // The array grows to the greatest identifier below this, 16 MiB at most.
    static constexpr int kDenseLimit = 1 << 22;
    static bool isDense(int id) { return id >= 0 && id < kDenseLimit; }

    std::vector<int> m_dense;
    QHash<int, int> m_sparse;
};

} // namespace sable
