#include "userimport/ImportTable.h"

#include "Messages.h"

#include <QFile>

namespace sable::ImportTableReader {

std::optional<QByteArray> load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = Msg::kImportCannotOpen.arg(path, file.errorString());
        return std::nullopt;
    }
    return file.readAll();
}

std::optional<ImportTable> read(const QByteArray& bytes, const ImportReadOptions& options, QString* error)
{
    ImportTable table;
    table.encoding = options.encoding.value_or(FileText::detect(bytes));
    int badLine = 0;
    const std::optional<QString> text = FileText::decode(bytes, table.encoding, &badLine);
    if (!text) {
        *error = Msg::kImportUndecodable.arg(badLine).arg(FileText::encodingName(table.encoding));
        return std::nullopt;
    }
    table.delimiter = options.delimiter.value_or(Csv::detectDelimiter(*text));
    CsvError problem;
    std::optional<std::vector<CsvRecord>> records = Csv::parse(*text, table.delimiter, &problem);
    if (!records) {
        *error = (problem.problem == CsvError::Problem::UnclosedQuote ? Msg::kImportUnclosedQuote
                                                                      : Msg::kImportTextAfterQuote)
                     .arg(problem.line);
        return std::nullopt;
    }
    if (records->empty() || (options.bHeader && records->size() == 1)) {
        *error = Msg::kImportNoRows;
        return std::nullopt;
    }
    table.bHeader = options.bHeader;
    if (options.bHeader) {
        table.columns = records->front().fields;
        records->erase(records->begin());
    } else {
        qsizetype widest = 0;
        for (const CsvRecord& record : *records)
            widest = std::max(widest, record.fields.size());
        for (qsizetype i = 1; i <= widest; ++i)
            table.columns << Msg::kImportColumnNumber.arg(i);
    }
    table.rows = std::move(*records);
    return table;
}

} // namespace sable::ImportTableReader
