#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace sable {

// A settings file read and written as the Windows private-profile functions do, because the
// messenger server reads Serverinfo.ini with them: sections and keys match without regard to case,
// values are trimmed and lose one pair of surrounding quotes, a missing file or section reads as the
// default, and a write changes or adds one line and leaves every other line as it was.
class IniFile
{
public:
    explicit IniFile(QString path);

    const QString& path() const { return m_path; }

    // The value, or `defaultValue`, cut to what fits in a buffer of `bufferBytes` (at most
    // bufferBytes - 1 stored bytes, never half a character).
    QString readString(const QString& section, const QString& key, const QString& defaultValue, int bufferBytes) const;

    // The leading number of the value (decimal, or with a 0x prefix hexadecimal; a sign allowed);
    // `defaultValue` when the key is missing or empty, 0 when the value does not start with a number.
    int readInt(const QString& section, const QString& key, int defaultValue) const;

    // Writes the value under the key, creating the file and the section when needed. The file is
    // replaced atomically; false when it could not be written.
    bool writeString(const QString& section, const QString& key, const QString& value) const;
    // Writes `value` under the key only when the key has none, and otherwise replaces the file with
    // what it holds, all under the file's lock: true proves the file can be written, and a value
    // another program wrote meanwhile is never put back to an older one.
    bool writeDefault(const QString& section, const QString& key, const QString& value) const;
    // Replaces the value with what `next` makes of the current one (nullopt when the key has none),
    // read and written under the file's lock, so that two programs raising a counter both count.
    bool updateString(const QString& section, const QString& key,
        const std::function<QString(const std::optional<QString>& current)>& next) const;
    // Writes keys that belong together in one replacement of the file: a reader, or a writer killed
    // halfway, sees all of them or none.
    bool writeStrings(const QString& section, const QList<std::pair<QString, QString>>& values) const;

private:
    QString m_path;
};

} // namespace sable
