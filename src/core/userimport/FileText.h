#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace sable {

// The encodings in which administrators bring user lists: UTF-8 (with or without a byte-order mark),
// the Korean Windows code page that older spreadsheets save in, and UTF-16 with a byte-order mark
// (a spreadsheet's "Unicode text").
enum class FileEncoding
{
    Utf8,
    Cp949,
    Utf16,
};

namespace FileText {

// A byte-order mark decides; otherwise text that is valid UTF-8 is UTF-8, and so is text whose
// well-formed multi-byte sequences far outnumber its bad bytes (decode then names the first bad
// line); otherwise text valid in the Korean code page is taken for it, and text valid in neither
// for the one of the two that reads further.
FileEncoding detect(const QByteArray& bytes);

// The text of the file without its byte-order mark; nullopt when the bytes are not valid in
// `encoding`, with the 1-based line of the first bad byte in `badLine`.
std::optional<QString> decode(const QByteArray& bytes, FileEncoding encoding, int* badLine);

// "UTF-8", "CP949", "UTF-16".
QString encodingName(FileEncoding encoding);

} // namespace FileText
} // namespace sable
