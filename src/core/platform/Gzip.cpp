#include "platform/Gzip.h"

#include "platform/PrivateFiles.h"

#include <QBuffer>
#include <QFile>

#include <algorithm>
#include <zlib.h>

namespace sable::Gzip {
namespace {

constexpr int kGzipWindow = 15 + 16; // a gzip header and trailer around the deflate stream
constexpr int kAnyWindow = 15 + 32; // zlib or gzip, as the header says
constexpr qsizetype kChunk = 256 * 1024;

// Inflates from `next` until the output holds a number of lines, `limit` bytes or the stream's end.
class Inflater
{
public:
    Inflater() { m_ok = inflateInit2(&m_stream, kAnyWindow) == Z_OK; }
    ~Inflater() { inflateEnd(&m_stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    // Feeds `input`; false when the stream is damaged or the output passed `limit`. With `lines` above
    // zero it stops once the output holds that many line ends: what follows is never unpacked.
    bool feed(const QByteArray& input, QByteArray& out, qint64 limit, int lines)
    {
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.constData()));
        m_stream.avail_in = static_cast<uInt>(input.size());
        while (m_ok && !m_bEnd && m_stream.avail_in > 0) {
            const qsizetype before = out.size();
            out.resize(before + kChunk);
            m_stream.next_out = reinterpret_cast<Bytef*>(out.data() + before);
            m_stream.avail_out = static_cast<uInt>(kChunk);
            const int status = inflate(&m_stream, Z_NO_FLUSH);
            out.resize(before + kChunk - static_cast<qsizetype>(m_stream.avail_out));
            m_bEnd = status == Z_STREAM_END;
            m_ok = status == Z_OK || status == Z_STREAM_END || status == Z_BUF_ERROR;
            if (lines > 0)
                m_lines += static_cast<int>(std::count(out.cbegin() + before, out.cend(), '\n'));
            if (lines > 0 && m_lines >= lines)
                return m_ok;
            if (out.size() > limit)
                return false;
        }
        return m_ok;
    }
    int lines() const { return m_lines; }
    bool ended() const { return m_bEnd; }

private:
    z_stream m_stream {};
    bool m_ok = false;
    bool m_bEnd = false;
    int m_lines = 0;
};

} // namespace

struct Writer::Stream
{
    z_stream z {};
    QByteArray out = QByteArray(kChunk, Qt::Uninitialized);
};

Writer::Writer(QIODevice& target)
    : m_target(target)
    , m_stream(std::make_unique<Stream>())
{
    m_bOk = deflateInit2(&m_stream->z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) == Z_OK;
    open(QIODevice::WriteOnly);
}

Writer::~Writer()
{
    deflateEnd(&m_stream->z);
}

bool Writer::deflateInto(int flush)
{
    z_stream& z = m_stream->z;
    int status = Z_OK;
    do {
        z.next_out = reinterpret_cast<Bytef*>(m_stream->out.data());
        z.avail_out = static_cast<uInt>(kChunk);
        status = deflate(&z, flush);
        const qint64 produced = kChunk - static_cast<qint64>(z.avail_out);
        if (status == Z_STREAM_ERROR || !PrivateFiles::writeAll(m_target, m_stream->out.constData(), produced))
            return m_bOk = false;
    } while (z.avail_out == 0 || (flush == Z_FINISH && status != Z_STREAM_END));
    return true;
}

qint64 Writer::writeData(const char* data, qint64 size)
{
    if (!m_bOk)
        return -1;
    m_stream->z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    m_stream->z.avail_in = static_cast<uInt>(size);
    return deflateInto(Z_NO_FLUSH) ? size : -1;
}

bool Writer::finish()
{
    if (!m_bOk)
        return false;
    m_stream->z.avail_in = 0;
    return deflateInto(Z_FINISH);
}

QByteArray compress(const QByteArray& plain)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Writer writer(buffer);
    writer.write(plain);
    writer.finish();
    return buffer.data();
}

std::optional<QByteArray> decompress(const QByteArray& gzipped, qint64 limit)
{
    Inflater inflater;
    QByteArray out;
    if (!inflater.feed(gzipped, out, limit, 0) || !inflater.ended() || out.size() > limit)
        return std::nullopt;
    return out;
}

std::optional<QByteArray> firstLine(const QString& path, qint64 limit)
{
    return firstLines(path, 1, limit);
}

std::optional<QByteArray> firstLines(const QString& path, int count, qint64 limit)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Inflater inflater;
    QByteArray out;
    while (!file.atEnd()) {
        if (!inflater.feed(file.read(64 * 1024), out, limit, count))
            return std::nullopt;
        if (inflater.lines() >= count) {
            qsizetype end = -1;
            for (int line = 0; line < count; ++line)
                end = out.indexOf('\n', end + 1);
            return out.first(end);
        }
        if (inflater.ended())
            break;
    }
    return std::nullopt;
}

} // namespace sable::Gzip
