#pragma once

#include "platform/RegistryBackend.h"

#include <QString>

namespace sable {

// The registry kept as one text file per root key in the format of regedit exports, so that
// settings move to and from a Windows machine with regedit. Each write replaces the file atomically
// under an advisory lock, so two programs that write at once both keep their values. A file over
// AtomicFile::kMaxBytes is no registry: it reads as empty, its values as FileTooLarge, and is never
// written.
class RegFileBackend final : public RegistryBackend
{
public:
    RegFileBackend(QString localMachineFile, QString currentUserFile);

    QString fileOf(RegRoot root) const;

    bool keyExists(RegRoot root, const std::string& path) override;
    bool createKey(RegRoot root, const std::string& path) override;
    std::optional<std::string> readString(
        RegRoot root, const std::string& path, const std::string& name, std::size_t bufferBytes) override;
    std::optional<std::uint32_t> readDword(RegRoot root, const std::string& path, const std::string& name) override;
    // Damaged also when the key's section holds a line that is not a value, when a broken section
    // header names the key, or when the file was cut (its last line has no line end).
    ValuePresence valuePresence(RegRoot root, const std::string& path, const std::string& name) override;
    bool writeString(RegRoot root, const std::string& path, const std::string& name, const std::string& value) override;
    bool writeDword(RegRoot root, const std::string& path, const std::string& name, std::uint32_t value) override;
    // All values in one replacement of the file.
    bool writeValues(RegRoot root, const std::string& path, const std::vector<RegValue>& values) override;

private:
    std::optional<QByteArray> valueText(RegRoot root, const std::string& path, const std::string& name) const;

    QString m_localMachineFile;
    QString m_currentUserFile;
};

} // namespace sable
