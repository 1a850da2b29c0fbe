#include "directory/DirectoryReader.h"

#include "Messages.h"
#include "directory/DistinguishedName.h"

#include <QElapsedTimer>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace sable {
namespace {

using Kind = DirectoryFailure::Kind;

constexpr quint32 kAccountDisabled = 2; // userAccountControl: ACCOUNTDISABLE

QString text(const std::string& value)
{
    return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
}

// "objectClass=x" and "(objectClass=x)" both, as a part of a combined filter.
QString parenthesised(const QString& filter)
{
    const QString trimmed = filter.trimmed();
    return trimmed.startsWith(u'(') ? trimmed : u'(' + trimmed + u')';
}

// The attributes a read asks for, and where each part of a user finds its values among them.
class AttributePlan
{
public:
    explicit AttributePlan(const DirectorySettings& settings)
    {
        const DirectoryMapping& mapping = settings.mapping;
        for (int column = 0; column < MemberColumnCount; ++column) {
            if (!DirectoryMapping::isMappable(column))
                continue;
            for (const QString& name : mapping.alternatives(column))
                m_fields[static_cast<size_t>(column)] << add(name);
        }
        if (!mapping.uniqueIdAttribute.trimmed().isEmpty())
            m_uniqueId = add(mapping.uniqueIdAttribute.trimmed());
        if (mapping.departments == DepartmentSource::Attribute)
            m_department = add(mapping.departmentAttribute.trimmed());
        if (!mapping.rankAttribute.trimmed().isEmpty())
            m_rank = add(mapping.rankAttribute.trimmed());
        if (mapping.leavers == LeaverRule::Disabled)
            m_control = add(QStringLiteral("userAccountControl"));
    }

    const std::vector<std::string>& names() const { return m_names; }
    const QList<int>& field(int column) const { return m_fields[static_cast<size_t>(column)]; }
    int uniqueId() const { return m_uniqueId; }
    int department() const { return m_department; }
    int rank() const { return m_rank; }
    int control() const { return m_control; }

private:
    int add(const QString& name)
    {
        const QString key = name.toLower();
        if (const auto known = m_indexes.constFind(key); known != m_indexes.cend())
            return *known;
        m_names.push_back(name.toStdString());
        const int index = static_cast<int>(m_names.size()) - 1;
        m_indexes.insert(key, index);
        return index;
    }

    std::vector<std::string> m_names;
    QHash<QString, int> m_indexes;
    std::array<QList<int>, MemberColumnCount> m_fields;
    int m_uniqueId = -1;
    int m_department = -1;
    int m_rank = -1;
    int m_control = -1;
};

// The value of the first of `alternatives` that the entry has, trimmed.
QString firstValue(const DirectoryRawEntry& entry, const QList<int>& alternatives)
{
    for (const int index : alternatives) {
        const std::vector<std::string>& values = entry.values[static_cast<size_t>(index)];
        if (!values.empty())
            return text(values.front()).trimmed();
    }
    return {};
}

// The department paths of the entries, each distinct one kept once in the snapshot. Many entries
// share a parent DN or a department value: each is parsed once.
class DepartmentPaths
{
public:
    DepartmentPaths(DistinguishedName base, QList<QStringList>& paths)
        : m_base(std::move(base))
        , m_paths(paths)
    { }

    // The path of the OUs above the entry; nullopt when its DN cannot be parsed.
    std::optional<int> ofDn(const QString& dn)
    {
        const QString parent = dn.mid(endOfFirstRdn(dn) + 1);
        if (const auto known = m_byParent.constFind(parent); known != m_byParent.cend())
            return *known;
        const std::optional<DistinguishedName> parsed = DistinguishedName::parse(parent);
        if (!parsed)
            return std::nullopt;
        const int index = indexOf(parsed->isWithin(m_base) ? parsed->organisationalUnitsBelow(m_base) : QStringList());
        m_byParent.insert(parent, index);
        return index;
    }

    // A department attribute's values: each a path, '/' separating the names from the top down.
    QList<int> ofValues(const std::vector<std::string>& values)
    {
        QList<int> indexes;
        for (const std::string& value : values) {
            QStringList names;
            for (const QString& name : text(value).split(u'/')) {
                if (!name.trimmed().isEmpty())
                    names << name.trimmed();
            }
            if (!names.isEmpty())
                indexes << indexOf(names);
        }
        return indexes;
    }

private:
    static qsizetype endOfFirstRdn(const QString& dn)
    {
        for (qsizetype i = 0; i < dn.size(); ++i) {
            if (dn[i] == u'\\')
                ++i;
            else if (dn[i] == u',' || dn[i] == u';')
                return i;
        }
        return dn.size();
    }

    int indexOf(const QStringList& names)
    {
        const QString key = names.join(QChar(0x1F));
        if (const auto known = m_byKey.constFind(key); known != m_byKey.cend())
            return *known;
        m_paths << names;
        const int index = static_cast<int>(m_paths.size()) - 1;
        m_byKey.insert(key, index);
        return index;
    }

    DistinguishedName m_base;
    QList<QStringList>& m_paths;
    QHash<QString, int> m_byParent;
    QHash<QString, int> m_byKey;
};

// One entry through the mapping.
class EntryReader
{
public:
    EntryReader(
        const DirectorySettings& settings, const AttributePlan& plan, DistinguishedName base, QList<QStringList>& paths)
        : m_settings(settings)
        , m_plan(plan)
        , m_paths(std::move(base), paths)
    { }

    DirectoryUser read(const DirectoryRawEntry& entry)
    {
        DirectoryUser user;
        user.dn = text(entry.dn);
        for (int column = 0; column < MemberColumnCount; ++column)
            user.fields[static_cast<size_t>(column)] = firstValue(entry, m_plan.field(column));
        // Postal addresses separate their lines with '$'; the member list holds one line.
        static const QRegularExpression lineBreaks(QStringLiteral("\\s*[$\\r\\n]+\\s*"));
        QString& address = user.fields[ColAddress];
        if (std::any_of(
                address.cbegin(), address.cend(), [](QChar ch) { return ch == u'$' || ch == u'\n' || ch == u'\r'; }))
            address = address.split(lineBreaks, Qt::SkipEmptyParts).join(QStringLiteral(", "));
        readIdentity(entry, user);
        readDepartments(entry, user);
        if (m_plan.rank() >= 0)
            user.rank = firstValue(entry, {m_plan.rank()});
        if (m_plan.control() >= 0)
            user.bDisabled = (firstValue(entry, {m_plan.control()}).toLongLong() & kAccountDisabled) != 0;
        return user;
    }

private:
    void readIdentity(const DirectoryRawEntry& entry, DirectoryUser& user)
    {
        const DirectoryMapping& mapping = m_settings.mapping;
        if (m_plan.uniqueId() < 0) {
            user.uniqueId = user.dn.toCaseFolded();
        } else if (const auto& values = entry.values[static_cast<size_t>(m_plan.uniqueId())]; !values.empty()) {
            user.uniqueId = DirectoryReader::uniqueIdText(mapping.uniqueIdAttribute.trimmed(), values.front());
        } else {
            user.problem = Msg::kDirNoUniqueId.arg(mapping.uniqueIdAttribute.trimmed());
        }
        if (user.fields[ColMemberID].isEmpty())
            user.problem = Msg::kDirNoLoginId.arg(mapping.alternatives(ColMemberID).join(QStringLiteral(", ")));
    }

    void readDepartments(const DirectoryRawEntry& entry, DirectoryUser& user)
    {
        if (m_plan.department() >= 0) {
            user.departments = m_paths.ofValues(entry.values[static_cast<size_t>(m_plan.department())]);
            return;
        }
        if (const std::optional<int> units = m_paths.ofDn(user.dn))
            user.departments << *units;
        else
            user.problem = Msg::kDirBadDn;
    }

    const DirectorySettings& m_settings;
    const AttributePlan& m_plan;
    DepartmentPaths m_paths;
};

} // namespace

DirectoryReader::DirectoryReader(DirectorySettings settings)
    : m_settings(std::move(settings))
{ }

QString DirectoryReader::describe(const DirectoryFailure& failure)
{
    QString what;
    switch (failure.kind) {
    case Kind::Unreachable:
        what = Msg::kDirUnreachable;
        break;
    case Kind::Tls:
        what = Msg::kDirTlsFailed;
        break;
    case Kind::BindRefused:
        what = Msg::kDirBindRefused;
        break;
    case Kind::NoSuchBase:
        what = Msg::kDirNoSuchBase;
        break;
    case Kind::BadFilter:
        what = Msg::kDirBadFilter;
        break;
    case Kind::TimedOut:
        what = Msg::kDirTimedOut;
        break;
    case Kind::LimitExceeded:
        what = Msg::kDirLimitExceeded;
        break;
    case Kind::Stopped:
        return Msg::kDirStopped;
    case Kind::None:
    case Kind::Other:
        what = Msg::kDirOtherError;
        break;
    }
    return failure.detail.empty() ? what : what + u'\n' + Msg::kDirServerSaid.arg(text(failure.detail));
}

QString DirectoryReader::uniqueIdText(const QString& attribute, const std::string& value)
{
    const auto byte = [&value](size_t i) { return static_cast<unsigned char>(value[i]); };
    if (value.size() == 16 && attribute.compare(QLatin1String("objectGUID"), Qt::CaseInsensitive) == 0) {
        // The first three groups of a GUID are stored least significant byte first.
        static constexpr size_t order[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
        QString out;
        for (size_t i = 0; i < 16; ++i) {
            if (i == 4 || i == 6 || i == 8 || i == 10)
                out += u'-';
            out += QStringLiteral("%1").arg(byte(order[i]), 2, 16, QLatin1Char('0'));
        }
        return out;
    }
    // Text IDs (entryUUID, nsUniqueId, ...) are printable ASCII; anything else is shown in hex.
    const bool printable = std::all_of(value.cbegin(), value.cend(), [](char c) { return c >= 0x20 && c < 0x7F; });
    const QByteArray bytes(value.data(), static_cast<qsizetype>(value.size()));
    return printable ? QString::fromLatin1(bytes) : QString::fromLatin1(bytes.toHex());
}

std::optional<DirectoryTestReport> DirectoryReader::test(QString* problem) const
{
    const std::optional<DirectoryEndpoint> endpoint = m_settings.endpoint(problem);
    if (!endpoint)
        return std::nullopt;
    const std::unique_ptr<DirectoryBackend> backend = createDirectoryBackend();
    DirectoryFailure failure;
    if (!backend->open(*endpoint, &failure)) {
        *problem = describe(failure);
        return std::nullopt;
    }
    DirectoryTestReport report;
    report.serverAnswer << Msg::kDirTestConnected.arg(m_settings.url.trimmed(),
        m_settings.bindDn.trimmed().isEmpty() ? Msg::kDirTestAnonymous : m_settings.bindDn.trimmed());
    // What the server says of itself; a server that keeps its root entry to itself says nothing.
    const std::vector<std::string> about {
        "vendorName", "vendorVersion", "dnsHostName", "namingContexts", "supportedLDAPVersion"};
    const QStringList labels {Msg::kDirTestVendor, Msg::kDirTestVersion, Msg::kDirTestHost, Msg::kDirTestNamingContexts,
        Msg::kDirTestLdapVersion};
    backend->search(
        "", DirectoryScope::Base, "(objectClass=*)", about, 0,
        [&report, &labels](DirectoryRawEntry& root) {
            for (size_t i = 0; i < root.values.size(); ++i) {
                QStringList values;
                for (const std::string& value : root.values[i])
                    values << text(value);
                if (!values.isEmpty())
                    report.serverAnswer << labels[static_cast<qsizetype>(i)].arg(values.join(QStringLiteral(", ")));
            }
            return true;
        },
        &failure);
    if (!backend->search(
            m_settings.baseDn.trimmed().toStdString(), DirectoryScope::Subtree,
            m_settings.effectiveFilter().toStdString(), {"1.1"}, m_settings.pageSize,
            [&report](DirectoryRawEntry&) {
                ++report.entries;
                return true;
            },
            &failure)) {
        *problem = describe(failure);
        return std::nullopt;
    }
    return report;
}

std::optional<DirectorySnapshot> DirectoryReader::read(const std::function<bool(int)>& going, QString* problem) const
{
    const std::optional<DirectoryEndpoint> endpoint = m_settings.endpoint(problem);
    if (!endpoint)
        return std::nullopt;
    const std::unique_ptr<DirectoryBackend> backend = createDirectoryBackend();
    DirectoryFailure failure;
    if (!backend->open(*endpoint, &failure)) {
        *problem = describe(failure);
        return std::nullopt;
    }
    const DistinguishedName base = *DistinguishedName::parse(m_settings.baseDn.trimmed());
    const AttributePlan plan(m_settings);
    DirectorySnapshot snapshot;
    EntryReader reader(m_settings, plan, base, snapshot.paths);
    snapshot.baseName = base.leafValue();
    snapshot.bPathsBelowTop = m_settings.mapping.departments == DepartmentSource::OrganisationalUnits;
    snapshot.bRankGiven = plan.rank() >= 0;
    for (int column = 0; column < MemberColumnCount; ++column)
        snapshot.mapped[static_cast<size_t>(column)] = !plan.field(column).isEmpty();
    QElapsedTimer total;
    QElapsedTimer own;
    qint64 ownNanoseconds = 0;
    total.start();
    const bool complete = backend->search(
        m_settings.baseDn.trimmed().toStdString(), DirectoryScope::Subtree, m_settings.effectiveFilter().toStdString(),
        plan.names(), m_settings.pageSize,
        [&](DirectoryRawEntry& entry) {
            own.start();
            snapshot.users.push_back(reader.read(entry));
            const bool goOn = !going || going(static_cast<int>(snapshot.users.size()));
            ownNanoseconds += own.nsecsElapsed();
            return goOn;
        },
        &failure);
    snapshot.searchSeconds = static_cast<double>(total.nsecsElapsed() - ownNanoseconds) / 1e9;
    if (!complete) {
        *problem = describe(failure);
        return std::nullopt;
    }
    if (m_settings.mapping.leavers == LeaverRule::Filter && !markFilteredLeavers(*backend, snapshot, problem))
        return std::nullopt;
    return snapshot;
}

bool DirectoryReader::markFilteredLeavers(
    DirectoryBackend& backend, DirectorySnapshot& snapshot, QString* problem) const
{
    const QString attribute = m_settings.mapping.uniqueIdAttribute.trimmed();
    const QString both = QStringLiteral("(&") + parenthesised(m_settings.effectiveFilter())
        + parenthesised(m_settings.mapping.leaverFilter) + u')';
    const std::string filter = both.toStdString();
    QSet<QString> leaving;
    DirectoryFailure failure;
    const bool complete = backend.search(
        m_settings.baseDn.trimmed().toStdString(), DirectoryScope::Subtree, filter,
        {attribute.isEmpty() ? std::string("1.1") : attribute.toStdString()}, m_settings.pageSize,
        [&](DirectoryRawEntry& entry) {
            if (attribute.isEmpty())
                leaving.insert(text(entry.dn).toCaseFolded());
            else if (!entry.values.front().empty())
                leaving.insert(uniqueIdText(attribute, entry.values.front().front()));
            return true;
        },
        &failure);
    if (!complete) {
        *problem = Msg::kDirLeaverFilterFailed.arg(describe(failure));
        return false;
    }
    for (DirectoryUser& user : snapshot.users)
        user.bDisabled = user.bDisabled || leaving.contains(user.uniqueId);
    return true;
}

} // namespace sable
