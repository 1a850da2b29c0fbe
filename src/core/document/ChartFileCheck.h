#pragma once

#include <QStringList>

namespace sable {

struct ChartTables;

// The rows of a chart file that no chart can be saved from, found before anything is written: two
// departments or two users with one identifier (their memberships would multiply at every later
// load and save), one login ID twice (compared without regard to case), departments whose parents
// form a cycle, and more than one top department. The rows are named as the file holds them,
// `groups[3]`, `members[12]`.
namespace ChartFileCheck {

// One line per problem, empty when there is none; the tables in the file's order.
QStringList problems(const ChartTables& tables);

} // namespace ChartFileCheck
} // namespace sable
