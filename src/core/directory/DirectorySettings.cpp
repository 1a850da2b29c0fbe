#include "directory/DirectorySettings.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "directory/DistinguishedName.h"

#include <QSet>
#include <QUrl>

namespace sable {
namespace {

// Filters and DNs are longer than the paths of the other settings.
constexpr int kTextBytes = 1024;
constexpr int kMaxPageSize = 100000;
constexpr int kMaxTimeoutSeconds = 3600;
constexpr int kMinPasswordLength = 4;
constexpr int kMaxPasswordLength = 20; // the member list's limit of the password column

// The registry name of each member field that an attribute may feed.
QString fieldKey(int column)
{
    switch (column) {
    case ColMemberID:
        return QStringLiteral("LoginId");
    case ColMemberName:
        return QStringLiteral("Name");
    case ColEmail:
        return QStringLiteral("Email");
    case ColHP:
        return QStringLiteral("Mobile");
    case ColOfficePhone:
        return QStringLiteral("OfficePhone");
    case ColAddress:
        return QStringLiteral("Address");
    case ColHomePhone:
        return QStringLiteral("HomePhone");
    case ColBirthDay:
        return QStringLiteral("Birthday");
    case ColDescription:
        return QStringLiteral("Description");
    default:
        break;
    }
    return {};
}

const char* sourceName(DepartmentSource source)
{
    return source == DepartmentSource::Attribute ? "attribute" : "ou";
}

const char* ruleName(LeaverRule rule)
{
    switch (rule) {
    case LeaverRule::Disabled:
        return "disabled";
    case LeaverRule::Filter:
        return "filter";
    case LeaverRule::Gone:
        break;
    }
    return "gone";
}

bool isUsableAlphabet(const QString& alphabet)
{
    QSet<QChar> distinct;
    for (const QChar ch : alphabet) {
        if (ch.unicode() < 0x21 || ch.unicode() > 0x7E)
            return false;
        distinct.insert(ch);
    }
    return distinct.size() >= 2;
}

} // namespace

DirectoryMapping DirectoryMapping::preset(DirectoryPreset preset)
{
    DirectoryMapping mapping;
    auto& a = mapping.attributes;
    const bool ad = preset == DirectoryPreset::ActiveDirectory;
    a[ColMemberID] = ad ? QStringLiteral("sAMAccountName") : QStringLiteral("uid");
    a[ColMemberName] = ad ? QStringLiteral("displayName,cn") : QStringLiteral("cn");
    a[ColEmail] = QStringLiteral("mail");
    a[ColHP] = QStringLiteral("mobile");
    a[ColOfficePhone] = QStringLiteral("telephoneNumber");
    a[ColAddress] = ad ? QStringLiteral("streetAddress") : QStringLiteral("postalAddress");
    a[ColHomePhone] = QStringLiteral("homePhone");
    a[ColDescription] = QStringLiteral("description");
    mapping.uniqueIdAttribute = ad ? QStringLiteral("objectGUID") : QStringLiteral("entryUUID");
    mapping.departmentAttribute = QStringLiteral("department");
    mapping.rankAttribute = QStringLiteral("title");
    mapping.leavers = ad ? LeaverRule::Disabled : LeaverRule::Gone;
    return mapping;
}

bool DirectoryMapping::isMappable(int column)
{
    return !fieldKey(column).isEmpty();
}

QStringList DirectoryMapping::alternatives(int column) const
{
    QStringList names;
    for (const QString& name : attributes[static_cast<size_t>(column)].split(u',')) {
        if (!name.trimmed().isEmpty())
            names << name.trimmed();
    }
    return names;
}

DirectoryPreset DirectorySettings::defaultPreset()
{
#ifdef Q_OS_WIN
    return DirectoryPreset::ActiveDirectory;
#else
    return DirectoryPreset::OpenLdap;
#endif
}

QString DirectorySettings::defaultPasswordAlphabet()
{
    // No letters that read alike (I l 1, O 0), so a password read out of a mail types right.
    return QStringLiteral("ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz23456789");
}

QString DirectorySettings::presetFilter(DirectoryPreset preset)
{
    return preset == DirectoryPreset::ActiveDirectory ? QStringLiteral("(&(objectCategory=person)(objectClass=user))")
                                                      : QStringLiteral("(objectClass=inetOrgPerson)");
}

void DirectorySettings::applyPreset(DirectoryPreset preset)
{
    mapping = DirectoryMapping::preset(preset);
    userFilter = presetFilter(preset);
}

DirectorySettings DirectorySettings::read(const Registry& registry)
{
    DirectorySettings settings;
    settings.userFilter = presetFilter(defaultPreset());
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kDirectorySync);
    if (!key)
        return settings;
    const auto text = [&key](const QString& name, QString& value) {
        if (const auto stored = key->readString(name, kTextBytes))
            value = *stored;
    };
    const auto number = [&key](const QString& name, int& value) {
        if (const auto stored = key->readDword(name))
            value = static_cast<int>(std::min<quint32>(*stored, 0x7FFFFFFF));
    };
    text(Keys::kDirUrl, settings.url);
    settings.bStartTls = key->readDword(Keys::kDirStartTls).value_or(0) != 0;
    text(Keys::kDirCaFile, settings.caFile);
    text(Keys::kDirBindDn, settings.bindDn);
    text(Keys::kDirBindPassword, settings.password);
    text(Keys::kDirBaseDn, settings.baseDn);
    text(Keys::kDirUserFilter, settings.userFilter);
    number(Keys::kDirPageSize, settings.pageSize);
    number(Keys::kDirTimeout, settings.timeoutSeconds);
    DirectoryMapping& mapping = settings.mapping;
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (DirectoryMapping::isMappable(column))
            text(Keys::kDirFieldAttribute.arg(fieldKey(column)), mapping.attributes[static_cast<size_t>(column)]);
    }
    text(Keys::kDirUniqueIdAttribute, mapping.uniqueIdAttribute);
    QString source;
    text(Keys::kDirDepartmentSource, source);
    if (!source.isEmpty())
        mapping.departments
            = source.compare(QLatin1String(sourceName(DepartmentSource::Attribute)), Qt::CaseInsensitive) == 0
            ? DepartmentSource::Attribute
            : DepartmentSource::OrganisationalUnits;
    text(Keys::kDirDepartmentAttribute, mapping.departmentAttribute);
    text(Keys::kDirRankAttribute, mapping.rankAttribute);
    QString rule;
    text(Keys::kDirLeaverRule, rule);
    for (const LeaverRule known : {LeaverRule::Gone, LeaverRule::Disabled, LeaverRule::Filter}) {
        if (rule.compare(QLatin1String(ruleName(known)), Qt::CaseInsensitive) == 0)
            mapping.leavers = known;
    }
    text(Keys::kDirLeaverFilter, mapping.leaverFilter);
    number(Keys::kDirLeaverThreshold, settings.leaverThresholdPercent);
    number(Keys::kDirPasswordLength, settings.passwordLength);
    text(Keys::kDirPasswordAlphabet, settings.passwordAlphabet);
    return settings;
}

bool DirectorySettings::write(const Registry& registry) const
{
    const auto key = registry.createKey(RegRoot::LocalMachine, Keys::kDirectorySync);
    if (!key)
        return false;
    // One step: a sync never runs with the server of one configuration and the account of another.
    RegistryValues values;
    values.string(Keys::kDirUrl, url.trimmed())
        .dword(Keys::kDirStartTls, bStartTls ? 1 : 0)
        .string(Keys::kDirCaFile, caFile)
        .string(Keys::kDirBindDn, bindDn.trimmed())
        .string(Keys::kDirBindPassword, password)
        .string(Keys::kDirBaseDn, baseDn.trimmed())
        .string(Keys::kDirUserFilter, userFilter.trimmed())
        .dword(Keys::kDirPageSize, static_cast<quint32>(pageSize))
        .dword(Keys::kDirTimeout, static_cast<quint32>(timeoutSeconds));
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (DirectoryMapping::isMappable(column))
            values.string(Keys::kDirFieldAttribute.arg(fieldKey(column)),
                mapping.attributes[static_cast<size_t>(column)].trimmed());
    }
    values.string(Keys::kDirUniqueIdAttribute, mapping.uniqueIdAttribute.trimmed())
        .string(Keys::kDirDepartmentSource, QLatin1String(sourceName(mapping.departments)))
        .string(Keys::kDirDepartmentAttribute, mapping.departmentAttribute.trimmed())
        .string(Keys::kDirRankAttribute, mapping.rankAttribute.trimmed())
        .string(Keys::kDirLeaverRule, QLatin1String(ruleName(mapping.leavers)))
        .string(Keys::kDirLeaverFilter, mapping.leaverFilter.trimmed())
        .dword(Keys::kDirLeaverThreshold, static_cast<quint32>(leaverThresholdPercent))
        .dword(Keys::kDirPasswordLength, static_cast<quint32>(passwordLength))
        .string(Keys::kDirPasswordAlphabet, passwordAlphabet);
    return key->writeValues(values);
}

QString DirectorySettings::effectiveFilter() const
{
    const QString filter = userFilter.trimmed();
    return filter.isEmpty() ? QStringLiteral("(objectClass=*)") : filter;
}

std::optional<DirectoryEndpoint> DirectorySettings::endpoint(QString* problem) const
{
    *problem = this->problem();
    if (!problem->isEmpty())
        return std::nullopt;
    const QUrl parsed(url.trimmed());
    DirectoryEndpoint endpoint;
    endpoint.bLdaps = parsed.scheme().compare(QLatin1String("ldaps"), Qt::CaseInsensitive) == 0;
    endpoint.host = parsed.host().toStdString();
    endpoint.port = parsed.port(endpoint.bLdaps ? 636 : 389);
    endpoint.bStartTls = bStartTls;
    endpoint.caFile = caFile.trimmed().toStdString();
    endpoint.bindDn = bindDn.trimmed().toStdString();
    endpoint.password = endpoint.bindDn.empty() ? std::string() : password.toStdString();
    endpoint.timeoutSeconds = timeoutSeconds;
    return endpoint;
}

QString DirectorySettings::problem() const
{
    const QString address = url.trimmed();
    if (address.isEmpty())
        return Msg::kDirNoUrl;
    const QUrl parsed(address, QUrl::StrictMode);
    const QString scheme = parsed.scheme().toLower();
    if (!parsed.isValid() || (scheme != QLatin1String("ldap") && scheme != QLatin1String("ldaps"))
        || parsed.host().isEmpty() || parsed.port() == 0)
        return Msg::kDirBadUrl;
    if (scheme == QLatin1String("ldaps") && bStartTls)
        return Msg::kDirTlsTwice;
    if (!bindDn.trimmed().isEmpty() && password.isEmpty())
        return Msg::kDirNoPassword;
    if (baseDn.trimmed().isEmpty())
        return Msg::kDirNoBaseDn;
    const std::optional<DistinguishedName> base = DistinguishedName::parse(baseDn.trimmed());
    if (!base || base->isEmpty())
        return Msg::kDirBadBaseDn.arg(baseDn.trimmed());
    if (mapping.alternatives(ColMemberID).isEmpty())
        return Msg::kDirNoLoginAttribute;
    if (mapping.alternatives(ColMemberName).isEmpty())
        return Msg::kDirNoNameAttribute;
    if (mapping.departments == DepartmentSource::Attribute && mapping.departmentAttribute.trimmed().isEmpty())
        return Msg::kDirNoDepartmentAttribute;
    if (mapping.leavers == LeaverRule::Filter && mapping.leaverFilter.trimmed().isEmpty())
        return Msg::kDirNoLeaverFilter;
    if (leaverThresholdPercent < 0 || leaverThresholdPercent > 100)
        return Msg::kDirBadThreshold;
    if (pageSize < 0 || pageSize > kMaxPageSize)
        return Msg::kDirBadPageSize.arg(kMaxPageSize);
    if (timeoutSeconds < 1 || timeoutSeconds > kMaxTimeoutSeconds)
        return Msg::kDirBadTimeout.arg(kMaxTimeoutSeconds);
    if (passwordLength < kMinPasswordLength || passwordLength > kMaxPasswordLength)
        return Msg::kDirBadPasswordLength.arg(kMinPasswordLength).arg(kMaxPasswordLength);
    if (!isUsableAlphabet(passwordAlphabet))
        return Msg::kDirBadPasswordAlphabet;
    return {};
}

} // namespace sable
