#pragma once

#include "directory/DirectoryBackend.h"
#include "orgchart/MemberRecord.h"
#include "platform/Registry.h"

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace sable {

enum class DirectoryPreset
{
    ActiveDirectory,
    OpenLdap, // inetOrgPerson entries
};

// Where a user's departments come from.
enum class DepartmentSource
{
    OrganisationalUnits, // the OUs of the entry's DN below the base DN, nested, under the top department
    Attribute, // an attribute holding a department, '/' separating a path from the top down
};

// Which managed users leave. A user whose entry is gone from the search always leaves; the other
// rules add entries that are still there.
enum class LeaverRule
{
    Gone,
    Disabled, // also entries whose userAccountControl has the "account disabled" bit (2)
    Filter, // also entries that match the administrator's filter
};

// Which attributes feed which member fields, and how departments, ranks and leavers are read.
struct DirectoryMapping
{
    // Per member column, the attribute that feeds it; empty: the field is not kept from the
    // directory. "displayName,cn" takes the first of them that the entry has.
    std::array<QString, MemberColumnCount> attributes;
    QString uniqueIdAttribute; // stays the same when an entry is renamed or moved; empty: the DN
    DepartmentSource departments = DepartmentSource::OrganisationalUnits;
    QString departmentAttribute;
    QString rankAttribute; // empty: ranks are left as they are
    LeaverRule leavers = LeaverRule::Gone;
    QString leaverFilter;

    static DirectoryMapping preset(DirectoryPreset preset);
    // The member columns that an attribute may feed (the password is generated, choices are not
    // kept in directories).
    static bool isMappable(int column);
    // The alternatives of a column's attribute, in order.
    QStringList alternatives(int column) const;

    bool operator==(const DirectoryMapping&) const = default;
};

// The directory to keep the chart from, as stored under HKLM SOFTWARE\Halvex\SableManager\DirectorySync.
struct DirectorySettings
{
    QString url; // ldap://host[:port] or ldaps://host[:port]
    bool bStartTls = false;
    QString caFile;
    QString bindDn; // empty: anonymous
    QString password;
    QString baseDn;
    QString userFilter;
    int pageSize = 500;
    int timeoutSeconds = 30;
    DirectoryMapping mapping = DirectoryMapping::preset(defaultPreset());
    int leaverThresholdPercent = 10; // more managed users than this share leaving stops the sync
    int passwordLength = 10;
    QString passwordAlphabet = defaultPasswordAlphabet();

    static DirectorySettings read(const Registry& registry);
    bool write(const Registry& registry) const;

    // Takes the mapping and the user filter of a preset; the connection stays as it is.
    void applyPreset(DirectoryPreset preset);
    static QString presetFilter(DirectoryPreset preset);
    static DirectoryPreset defaultPreset();
    static QString defaultPasswordAlphabet();

    // The first reason these settings cannot be used, or an empty text.
    QString problem() const;
    // How to reach the server; nullopt with the reason when the settings cannot be used.
    std::optional<DirectoryEndpoint> endpoint(QString* problem) const;
    // The user filter as searched: "(objectClass=*)" when none is set.
    QString effectiveFilter() const;

    bool operator==(const DirectorySettings&) const = default;
};

} // namespace sable
