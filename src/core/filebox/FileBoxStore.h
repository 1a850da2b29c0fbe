#pragma once

namespace sable {

class DbConnection;
class FileBoxLists;

// SB_Folder, SB_GroupAuthority and SB_UserAuthority.
namespace FileBoxStore {

bool load(DbConnection& connection, FileBoxLists& lists);
// Deletes every row of the three tables and inserts the lists in their order.
bool store(DbConnection& connection, const FileBoxLists& lists);

} // namespace FileBoxStore
} // namespace sable
