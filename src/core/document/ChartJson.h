#pragma once

#include "document/ChartTables.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

class QIODevice;

namespace sable {

// The chart as JSON: one object with the arrays "groups", "members", "relations", "ranks",
// "folders", "groupAuthorities" and "userAuthorities", holding exactly the rows a save would write
// now, in its order, each row an object keyed by the table's column names.
namespace ChartJson {

QByteArray write(const ChartTables& tables);
// The same written to `out` as it is made; false when `out` refused a write.
bool write(const ChartTables& tables, QIODevice& out);

// The rows of that form from a chart file, read a row at a time (departments ordered as a chart is
// built from them). nullopt and a reason when the file is not of that form (naming the row and the
// field) or holds rows no chart can be saved from (naming the rows, see ChartFileCheck).
std::optional<ChartTables> readFile(QIODevice& in, QString* error);
// The rows of that form from an object already parsed (the chart inside a restore point), as they
// are: what a database held is kept whatever it was.
std::optional<ChartTables> read(const QJsonObject& root, QString* error);

} // namespace ChartJson
} // namespace sable
