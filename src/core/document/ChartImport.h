#pragma once

namespace sable {

class CSableManagerDoc;
class DbConnection;
struct ChartTables;

// A chart file taking the place of the stored chart.
namespace ChartImport {

// Makes `doc` hold the chart of `tables`, modified, with every user and department the database
// holds and the file has not listed as deleted, so that the save removes what the server keeps of
// them. False, with `doc` as it was, when the stored identifiers cannot be read (the connection's
// last error says why): taking that for "nothing stored" would leave their rows behind.
bool replaceChart(DbConnection& db, CSableManagerDoc& doc, ChartTables&& tables);

} // namespace ChartImport
} // namespace sable
