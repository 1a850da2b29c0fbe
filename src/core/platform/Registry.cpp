#include "platform/Registry.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QStandardPaths>

#ifdef Q_OS_WIN
#include "platform/WinRegistryBackend.h"
#else
#include "platform/RegFileBackend.h"
#endif

namespace sable {

Registry::Registry(std::shared_ptr<RegistryBackend> backend)
    : m_backend(std::move(backend))
{ }

Registry Registry::forHome(const QString& homeFolder)
{
#ifdef Q_OS_WIN
    Q_UNUSED(homeFolder);
    return Registry(std::make_shared<WinRegistryBackend>());
#else
    const QString shared = qEnvironmentVariable("SABLE_REGISTRY_DIR");
    if (!shared.isEmpty()) {
        const QDir dir(shared);
        return Registry(std::make_shared<RegFileBackend>(
            dir.filePath(QStringLiteral("HKLM.reg")), dir.filePath(QStringLiteral("HKCU.reg"))));
    }
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return Registry(std::make_shared<RegFileBackend>(QDir(homeFolder).filePath(QStringLiteral("registry/HKLM.reg")),
        QDir(config).filePath(QStringLiteral("Halvex/HKCU.reg"))));
#endif
}

std::optional<RegistryKey> Registry::openKey(RegRoot root, const QString& path) const
{
    if (!m_backend->keyExists(root, path.toStdString()))
        return std::nullopt;
    return RegistryKey(m_backend, root, path);
}

std::optional<RegistryKey> Registry::createKey(RegRoot root, const QString& path) const
{
    if (!m_backend->createKey(root, path.toStdString()))
        return std::nullopt;
    return RegistryKey(m_backend, root, path);
}

ValuePresence Registry::presence(RegRoot root, const QString& path, const QString& name) const
{
    return m_backend->valuePresence(root, path.toStdString(), name.toStdString());
}

RegistryValues& RegistryValues::string(const QString& name, const QString& value)
{
    m_values.push_back({name.toStdString(), value.toStdString()});
    return *this;
}

RegistryValues& RegistryValues::dword(const QString& name, quint32 value)
{
    m_values.push_back({name.toStdString(), std::uint32_t {value}});
    return *this;
}

RegistryKey::RegistryKey(std::shared_ptr<RegistryBackend> backend, RegRoot root, QString path)
    : m_backend(std::move(backend))
    , m_root(root)
    , m_path(std::move(path))
{ }

std::optional<QString> RegistryKey::readString(const QString& name, int bufferBytes) const
{
    const auto value = m_backend->readString(
        m_root, m_path.toStdString(), name.toStdString(), static_cast<std::size_t>(qMax(0, bufferBytes)));
    if (!value)
        return std::nullopt;
    return QString::fromStdString(*value);
}

std::optional<quint32> RegistryKey::readDword(const QString& name) const
{
    return m_backend->readDword(m_root, m_path.toStdString(), name.toStdString());
}

bool RegistryKey::writeString(const QString& name, const QString& value) const
{
    return m_backend->writeString(m_root, m_path.toStdString(), name.toStdString(), value.toStdString());
}

bool RegistryKey::writeDword(const QString& name, quint32 value) const
{
    return m_backend->writeDword(m_root, m_path.toStdString(), name.toStdString(), value);
}

bool RegistryKey::writeValues(const RegistryValues& values) const
{
    return m_backend->writeValues(m_root, m_path.toStdString(), values.values());
}

} // namespace sable
