#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace sable {

// The department and rank cells of an import file. A user may sit in several departments, so the
// department cell holds paths separated by ';', each path the department names from the top down
// separated by '/' ("본사/영업부/1팀"); the rank cell holds one rank name for all of them or one per
// path, again separated by ';'. A backslash takes the next character literally, so that names
// holding '/', ';' or '\' survive an export and an import. Names are trimmed; empty names are left
// out of a path, and empty paths out of the list.
namespace DepartmentPaths {

QList<QStringList> split(const QString& cell);
QString join(const QList<QStringList>& paths);
// One path of the department cell, escaped: join() of several is these separated by ';'.
QString joinPath(const QStringList& names);

// Rank names in order; an empty entry stands for no rank. An empty cell is an empty list.
QStringList splitRanks(const QString& cell);
QString joinRanks(const QStringList& names);

} // namespace DepartmentPaths
} // namespace sable
