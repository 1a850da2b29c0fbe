#pragma once

#include "document/CSableManagerDoc.h"

namespace sable {

class DbConnection;

// A believable small company for first runs and demonstrations: 8 departments three levels deep,
// 40 users (two of them in no department, one in two), 6 ranks and file-box folders with
// department and user permissions.
namespace DemoOrganisation {

// True when the chart tables hold no member and no group.
bool isChartEmpty(DbConnection& connection);

// The demo as a document's contents.
ChartContents contents();

// Writes the demo with the chart's own table writers in one transaction; false (and nothing
// written) on failure.
bool write(DbConnection& connection);

} // namespace DemoOrganisation
} // namespace sable
