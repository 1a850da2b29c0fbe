#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace sable::Gzip {

// The bytes in the gzip format that zcat and every archiver read.
QByteArray compress(const QByteArray& bytes);

// The bytes of a gzip stream; nullopt when it is damaged or would unpack to more than `limit` bytes.
std::optional<QByteArray> decompress(const QByteArray& gzipped, qint64 limit);

// The first line (up to `limit` bytes) of a gzip-compressed file, without reading the rest.
std::optional<QByteArray> firstLine(const QString& path, qint64 limit);

} // namespace sable::Gzip
