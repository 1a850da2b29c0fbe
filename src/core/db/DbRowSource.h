#pragma once

#include <QSqlError>
#include <QString>

namespace sable {

// Where a recordset's rows come from: Qt's query classes, or for the embedded engine its own API.
class DbRowSource
{
public:
    virtual ~DbRowSource() = default;
    // Moves to the next row; false at the end, and when reading failed (then error() says why).
    virtual bool next() = 0;
    // What stopped the reading before the end (a busy database, a lost connection); no error at the end.
    virtual QSqlError error() const = 0;
    virtual bool isNull(int n) const = 0;
    virtual qint64 integer(int n) const = 0;
    virtual QString text(int n) const = 0;
    virtual int fieldCount() const = 0;
    virtual QString fieldName(int n) const = 0;
};

} // namespace sable
