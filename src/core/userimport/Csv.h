#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace sable {

// One record of a delimited text file, with the line on which it begins (a quoted field may run
// over several lines).
struct CsvRecord
{
    int line = 0;
    QStringList fields;
};

struct CsvError
{
    enum class Problem
    {
        UnclosedQuote, // the file ends inside a quoted field
        TextAfterQuote, // a quoted field goes on after its closing quote
    };
    int line = 0;
    Problem problem = Problem::UnclosedQuote;
};

// Comma- and tab-separated text as spreadsheets write it: a field in double quotes may hold the
// delimiter, line breaks and doubled quotes; records end at CR LF, LF or CR.
namespace Csv {

// A tab when the first line holds more tabs than commas, otherwise a comma.
QChar detectDelimiter(QStringView text);

// The records of `text`, blank lines left out; nullopt with the place and kind of the first problem.
std::optional<std::vector<CsvRecord>> parse(QStringView text, QChar delimiter, CsvError* error);

// One record as a line without its line end; fields holding the delimiter, a quote, a line break or
// blanks at either end are put in quotes.
QString line(const QStringList& fields, QChar delimiter);

} // namespace Csv
} // namespace sable
