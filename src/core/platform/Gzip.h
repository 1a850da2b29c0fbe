#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <memory>
#include <optional>

namespace sable::Gzip {

// `plain` as one gzip stream.
QByteArray compress(const QByteArray& plain);

// The bytes of a gzip stream; nullopt when it is damaged or would unpack to more than `limit` bytes.
std::optional<QByteArray> decompress(const QByteArray& gzipped, qint64 limit);

// The first line (up to `limit` bytes) of a gzip-compressed file, without reading the rest.
std::optional<QByteArray> firstLine(const QString& path, qint64 limit);
// The first `count` lines (up to `limit` bytes, without the last line's end) in the same way.
std::optional<QByteArray> firstLines(const QString& path, int count, qint64 limit);

// A device that compresses what is written to it into `target` as one gzip stream (the format zcat
// and every archiver read), a piece at a time, so that a large file is never held whole, plain or
// packed.
class Writer final : public QIODevice
{
public:
    explicit Writer(QIODevice& target);
    ~Writer() override;
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Ends the stream (its trailer written to `target`); false when compressing or writing failed.
    bool finish();

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override;

private:
    struct Stream;
    bool deflateInto(int flush);

    QIODevice& m_target;
    std::unique_ptr<Stream> m_stream;
    bool m_bOk = false;
};

} // namespace sable::Gzip
