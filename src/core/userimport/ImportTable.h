#pragma once

#include "userimport/Csv.h"
#include "userimport/FileText.h"

#include <QByteArray>

#include <optional>

namespace sable {

// How to read an import file; what is not given is detected.
struct ImportReadOptions
{
    std::optional<FileEncoding> encoding;
    std::optional<QChar> delimiter;
    bool bHeader = true; // the first record names the columns
};

// An import file read into columns and rows.
struct ImportTable
{
    FileEncoding encoding = FileEncoding::Utf8;
    QChar delimiter = u',';
    bool bHeader = true;
    QStringList columns; // the header's names, or "1열", "2열", ... without a header
    std::vector<CsvRecord> rows;
};

namespace ImportTableReader {

// The bytes of the file; nullopt with the reason when it cannot be read.
std::optional<QByteArray> load(const QString& path, QString* error);

// Decodes and splits the file; nullopt with the reason, naming the line, when it is malformed.
std::optional<ImportTable> read(const QByteArray& bytes, const ImportReadOptions& options, QString* error);

} // namespace ImportTableReader
} // namespace sable
