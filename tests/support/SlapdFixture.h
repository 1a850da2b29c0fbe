#pragma once

#include "directory/DirectorySettings.h"

#include <QString>
#include <QStringList>

// The OpenLDAP server that the test fixture started (tests/fixtures/slapd.sh), if any.
struct SlapdServer
{
    QString url; // ldap://127.0.0.1:PORT, StartTLS offered
    QString ldapsUrl;
    QString base; // the loaded organisation, which no test changes
    QString scratch; // where tests make units of their own
    QString admin; // the manager of the scratch base
    QString adminPassword;
    QString ca; // the authority that signed the server's certificate
    QString otherCa; // one that did not

    static SlapdServer fromFixture();
    bool isAvailable() const { return !url.isEmpty(); }

    // The OpenLDAP preset over the fixture's organisation, bound as cn=reader.
    sable::DirectorySettings settings() const;

    // Runs ldapmodify as the manager of the scratch base; false with the tool's complaint as a warning.
    bool modify(const QString& ldif) const;

    // A unit of its own for a test that changes entries: "ou=NAME-<random>,dc=scratch,dc=test"
    // with one inetOrgPerson per login ID (cn "사용자 N", title "사원", in the unit itself).
    QString addUnit(const QString& name, const QStringList& logins) const;
    // The DN of a login's entry in a unit made by addUnit.
    static QString userDn(const QString& unit, const QString& login);
};
