#pragma once

#include "db/DbRowSource.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QVariantList>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;

namespace sable::SqliteNative {

// The embedded engine's own handle behind a Qt connection, when Qt's driver and this program use
// the same library (the build says so); nullptr otherwise. Bulk reads and writes through it skip
// Qt's conversion of every value, which is most of the cost of loading and saving a large chart.
sqlite3* handle(const QSqlDatabase& database);

// Runs a SELECT; nullptr and `error` on failure.
std::unique_ptr<DbRowSource> select(sqlite3* db, const QString& sql, QSqlError* error);

// One prepared statement run many times with new values.
class Statement
{
public:
    Statement(sqlite3* db, const QString& sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool isValid() const { return m_statement != nullptr; }
    bool run(const QVariantList& values);
    QSqlError lastError() const;

private:
    sqlite3* m_db;
    sqlite3_stmt* m_statement = nullptr;
};

} // namespace sable::SqliteNative
