#pragma once

#include <QHash>

namespace sable {

class OrgChart;

// What a save would write, reduced to one number per row, so that the chart as the database holds
// it can be compared with the chart in memory: how many departments, members and memberships a
// save adds, changes and removes.
class ChartFingerprint
{
public:
    struct Counts
    {
        int added = 0;
        int changed = 0;
        int removed = 0;
        bool operator==(const Counts&) const = default;
    };
    struct Summary
    {
        Counts groups;
        Counts members;
        Counts relations;
        bool operator==(const Summary&) const = default;
    };

    static ChartFingerprint of(const OrgChart& chart);

    // What changes from this (the stored chart) to `now`.
    Summary changesTo(const ChartFingerprint& now) const;

private:
    QHash<qint64, size_t> m_groups;
    QHash<qint64, size_t> m_members;
    QHash<qint64, size_t> m_relations; // keyed by member and department
};

} // namespace sable
