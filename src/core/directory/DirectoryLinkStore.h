#pragma once

namespace sable {

class DbConnection;
class DirectoryLinks;
class OrgChart;

// SM_DirectoryLink, the console's own table of the users the directory sync keeps (K_MemberID,
// EntryID, EntryDN). The messenger server does not read it.
namespace DirectoryLinkStore {

// The links as stored; a database without the table holds none.
bool load(DbConnection& connection, DirectoryLinks& links);
// Rewrites the table with the links of the users the chart has, creating it when it is missing and
// there is something to keep. Runs inside the save's transaction.
bool store(DbConnection& connection, const DirectoryLinks& links, const OrgChart& chart);

} // namespace DirectoryLinkStore
} // namespace sable
