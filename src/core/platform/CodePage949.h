#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>

namespace sable {

// The messenger server and its Windows tools measure text in the Korean ANSI code page: one byte for
// ASCII, two for a Hangul syllable or any other character of the page, and one for a character
// outside it (Windows writes it as '?'). Every limit "in stored bytes" is counted with these helpers.
namespace CodePage949 {

// Bytes that `text` takes in the code page.
int byteLength(QStringView text);

// Bytes that one character (a code point, surrogate pairs included) takes in the code page.
int charByteLength(char32_t codePoint);

// The longest prefix of `text` that fits in `maxBytes`, never splitting a character.
QString truncated(const QString& text, int maxBytes);

// Conversion for files written by Windows programs; nullopt when the bytes are not valid in the page.
std::optional<QString> decode(const QByteArray& bytes);
QByteArray encode(const QString& text);

} // namespace CodePage949
} // namespace sable
