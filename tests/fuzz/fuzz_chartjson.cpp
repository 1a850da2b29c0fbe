// A chart file (sablectl chart import) as anyone may have edited it, read as the import streams
// it: reading never crashes on it, and
// what was read, written and read again, writes the same text.
#include "FuzzSupport.h"
#include "document/ChartJson.h"

#include <QBuffer>

using namespace sable;

namespace {

std::optional<ChartTables> readText(QByteArray text, QString* error)
{
    QBuffer in(&text);
    in.open(QIODevice::ReadOnly);
    return ChartJson::readFile(in, error);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QString error;
    const std::optional<ChartTables> tables = readText(json, &error);
    fuzz::check(tables.has_value() == error.isEmpty(), "a reason is given exactly when reading fails");
    if (!tables)
        return 0;
    const QByteArray written = ChartJson::write(*tables);
    const std::optional<ChartTables> again = readText(written, &error);
    fuzz::check(again.has_value(), "a written chart reads");
    fuzz::check(ChartJson::write(*again) == written, "a written chart reads as it was");
    return 0;
}
