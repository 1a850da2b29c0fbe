#pragma once

#include <QByteArray>
#include <QString>

namespace sable {

class OrgChart;
class RankList;

// The member list as a CSV file that the import reads back without loss: UTF-8 with a byte-order
// mark (so that spreadsheets show Hangul), lines ending in CR LF, a header of the member list's
// column names followed by "부서" and "직급", then one line per member in list order with every
// column as the list shows it, the password included (the file is as confidential as the database),
// the member's departments as paths in tree order and its ranks there.
namespace UserExport {

QByteArray csv(const OrgChart& chart, const RankList& ranks);

// Writes the file whole, replacing `path` only once it is complete; false with the reason.
bool writeFile(const OrgChart& chart, const RankList& ranks, const QString& path, QString* error);

} // namespace UserExport
} // namespace sable
