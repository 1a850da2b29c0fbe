#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// What the fuzz targets share: a folder for the files they write, and a check whose failure the
// fuzzer keeps as a crash, with the input that caused it.
namespace sable::fuzz {

// In memory where there is such a folder: every write of a settings file is flushed to the disk,
// which on a disk would take most of the time the fuzzer has.
inline QString scratchFolder()
{
    static const QTemporaryDir folder(QFileInfo(QStringLiteral("/dev/shm")).isWritable()
            ? QStringLiteral("/dev/shm/sable-fuzz-XXXXXX")
            : QDir::tempPath() + QStringLiteral("/sable-fuzz-XXXXXX"));
    return folder.path();
}

// A file of the scratch folder holding exactly `size` bytes of `data`.
inline QString fileWith(const char* name, const std::uint8_t* data, std::size_t size)
{
    const QString path = scratchFolder() + u'/' + QLatin1String(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::abort();
    }
    return path;
}

inline void check(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

} // namespace sable::fuzz
