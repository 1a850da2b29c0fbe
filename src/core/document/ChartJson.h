#pragma once

#include "document/ChartTables.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace sable {

// The chart as JSON: one object with the arrays "groups", "members", "relations", "ranks",
// "folders", "groupAuthorities" and "userAuthorities", holding exactly the rows a save would write
// now, in its order, each row an object keyed by the table's column names.
namespace ChartJson {

QByteArray write(const ChartTables& tables);

// The rows of that form (departments ordered as a chart is built from them). nullopt and a reason
// naming the row and the field when the text is not of that form.
std::optional<ChartTables> read(const QByteArray& json, QString* error);
// The same from an object already parsed (the chart inside another document).
std::optional<ChartTables> read(const QJsonObject& root, QString* error);

} // namespace ChartJson
} // namespace sable
