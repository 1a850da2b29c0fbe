#pragma once

#include <QIcon>

namespace sable::Icons {

QIcon app();
QIcon navigation(const char* name); // "orgchart", "ranks", "folders", "users", "settings"
QIcon department();
QIcon member(bool bMale);
QIcon rank();
QIcon up();
QIcon down();
QIcon save();
QIcon undo();
QIcon redo();
QIcon search();
QIcon folder(bool bMissing = false); // a file-box folder; dashed and crossed when it is not on disk

} // namespace sable::Icons
