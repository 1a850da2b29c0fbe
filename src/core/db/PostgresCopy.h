#pragma once

#include <QByteArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QStringList>
#include <QVariantList>

struct pg_conn;

namespace sable::PostgresCopy {

// The PostgreSQL client's own handle behind a Qt connection, when Qt's driver and this program use
// the same client library (the build says so), the connection is idle (in a transaction or not) and
// it talks UTF-8; nullptr otherwise. Rows sent through COPY on it travel as one stream instead of
// one bound statement per batch, in the caller's transaction.
pg_conn* handle(const QSqlDatabase& database);
// Whether this build has the bulk copy at all.
bool isBuilt();

// Rows streamed into one table by COPY ... FROM STDIN in the text format. The server checks them
// as it receives them, but says so only at the end: a failure shows in finish().
class Writer
{
public:
    Writer(pg_conn* connection, const QString& table, const QStringList& columns);
    // Rows added since the last finish() are abandoned, and with them the transaction they were in.
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Adds one row, one value per column: integers, texts and NULL (an invalid QVariant or a null
    // text, as Qt's driver sends them). False when the connection failed.
    bool add(const QVariantList& values);
    // Ends the copy and waits for the server's verdict on every row sent; false when it refused any.
    bool finish();
    QSqlError lastError() const { return m_error; }

private:
    bool begin();
    bool send();
    void abandon();
    bool fail(const QString& what);

    pg_conn* m_connection;
    QByteArray m_statement;
    QByteArray m_buffer;
    QByteArray m_scratch;
    bool m_bCopying = false;
    QSqlError m_error;
};

} // namespace sable::PostgresCopy
