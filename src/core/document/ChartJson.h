#pragma once

#include "document/CSableManagerDoc.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace sable {

// The chart as JSON: one object with the arrays "groups", "members", "relations", "ranks",
// "folders", "groupAuthorities" and "userAuthorities", holding exactly the rows a save would write
// now, in its order, each row an object keyed by the table's column names.
namespace ChartJson {

QByteArray write(const CSableManagerDoc& doc);

// Builds contents from that form, placing departments and members as a load places them. nullopt
// and a reason naming the row and the field when the text is not of that form.
std::optional<ChartContents> read(const QByteArray& json, QString* error);

} // namespace ChartJson
} // namespace sable
