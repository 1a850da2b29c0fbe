#pragma once

#include "orgchart/MemberRecord.h"

#include <QStringList>

#include <array>

namespace sable {

// What a column of an import file may hold: one of the member columns (the values of MemberColumn),
// the departments of the user as paths, or the user's rank in them.
enum ImportField
{
    FieldDepartment = MemberColumnCount,
    FieldRank,
    ImportFieldCount
};

// Which column of the file feeds which field; -1 for a field that the file does not give.
class ColumnMapping
{
public:
    ColumnMapping();

    // Each field takes the first column whose header names it, in Korean as the member list does or
    // in English (the database's column names and their plain words); case, blanks, '_' and '-' do
    // not matter. A column feeds at most one field.
    static ColumnMapping matchHeaders(const QStringList& headers);
    // For a file without a header: the columns in the order of the export.
    static ColumnMapping byPosition(int columnCount);

    // The header the export writes for a field: the member list's, then "부서" and "직급".
    static QString fieldName(int field);

    int column(int field) const { return m_columns[static_cast<size_t>(field)]; }
    bool isMapped(int field) const { return column(field) >= 0; }
    // Maps `field` to `column` (-1: not imported); another field fed by that column loses it.
    void setColumn(int field, int column);

    bool operator==(const ColumnMapping&) const = default;

private:
    std::array<int, ImportFieldCount> m_columns;
};

} // namespace sable
