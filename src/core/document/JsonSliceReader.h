#pragma once

#include <QByteArray>
#include <QString>

class QIODevice;

namespace sable {

// Reads one JSON object from a device a piece at a time: the keys of the outer object, and the
// elements of an array value one by one, each as its own text for QJsonDocument to parse. A chart
// file of a hundred thousand users is never held whole, nor as one document tree: only the element
// being read is.
class JsonSliceReader
{
public:
    explicit JsonSliceReader(QIODevice& in);

    // The opening brace of the outer object; false on anything else.
    bool beginObject();
    // The next key of the outer object, its colon read; false at the object's end or on a problem.
    bool nextKey(QString* key);
    // Enters the value that follows a key when it is an array; false (nothing read) when it is not.
    bool beginArray();
    // The next element of the entered array, as its text; false at the array's end or on a problem.
    // `offset` receives where the element starts in the file, for messages.
    bool nextElement(QByteArray* text, qint64* offset);
    // Reads past the value that follows a key, checking that it is JSON.
    bool skipValue();
    // After the object: true when nothing but blanks follows.
    bool atEnd();

    bool failed() const { return !m_error.isEmpty(); }
    // "not JSON at offset N: ..." once something failed.
    const QString& error() const { return m_error; }

private:
    bool fill();
    // The byte at the read position, reading more as needed; 0 at the end of the input.
    char peek();
    bool skipBlanks();
    bool expect(char c);
    // Reads past one value (any JSON value) from the read position; false on a problem.
    bool scanValue();
    bool scanString();
    bool scanNested();
    bool scanScalar();
    // After an element or a key's value: a comma (true) or the closing `close` (false, consumed).
    bool nextOrClose(char close, bool* more);
    QByteArray slice(qsizetype from) const { return m_buffer.mid(from, m_pos - from); }
    bool fail(const QString& problem, qint64 at = -1);
    qint64 offset() const { return m_dropped + m_pos; }
    void dropRead();

    QIODevice& m_in;
    QByteArray m_buffer;
    qsizetype m_pos = 0;
    qint64 m_dropped = 0; // bytes of the input before the buffer's first one
    bool m_bEof = false;
    bool m_bFirstKey = true;
    bool m_bFirstElement = true;
    bool m_bObjectDone = false;
    QString m_error;
};

} // namespace sable
