// A user list as a spreadsheet or an administrator wrote it: decoding and parsing never fail on it,
// and the records parsed, written as lines again, parse to the same records.
#include "FuzzSupport.h"
#include "userimport/Csv.h"
#include "userimport/FileText.h"

using namespace sable;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    int badLine = 0;
    for (const FileEncoding encoding : {FileEncoding::Utf8, FileEncoding::Cp949, FileEncoding::Utf16})
        FileText::decode(bytes, encoding, &badLine);
    const std::optional<QString> text = FileText::decode(bytes, FileText::detect(bytes), &badLine);
    if (!text)
        return 0;

    const QChar delimiter = Csv::detectDelimiter(*text);
    CsvError error;
    const auto records = Csv::parse(*text, delimiter, &error);
    if (!records)
        return 0;
    QString written;
    for (const CsvRecord& record : *records)
        written += Csv::line(record.fields, delimiter) + u'\n';
    const auto again = Csv::parse(written, delimiter, &error);
    fuzz::check(again && again->size() == records->size(), "written records parse to as many records");
    for (size_t i = 0; i < records->size(); ++i)
        fuzz::check((*again)[i].fields == (*records)[i].fields, "written records parse to the same fields");
    return 0;
}
