#pragma once

#include "directory/DirectorySettings.h"

#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace sable {

// One user entry as the mapping reads it.
struct DirectoryUser
{
    QString dn;
    QString uniqueId; // the unique-ID attribute's value as text, or the DN in lower case without one
    bool bDisabled = false; // a leaver by the leaver rule although the entry is still there
    std::array<QString, MemberColumnCount> fields; // the mapped fields; empty where the entry has none
    QList<int> departments; // the user's department paths, as indexes into DirectorySnapshot::paths
    QString rank;
    QString problem; // why the entry cannot be used as a user (then nothing else counts)
};

// Every user entry of one search, with what the sync needs to know about the whole.
struct DirectorySnapshot
{
    std::vector<DirectoryUser> users;
    // The distinct department paths of the users, names from the top down: thousands of users share
    // a few hundred departments, and each is resolved once.
    QList<QStringList> paths;
    std::array<bool, MemberColumnCount> mapped {}; // the member fields the directory feeds
    QString baseName; // the value of the base DN's first RDN: the top department of an empty chart
    bool bPathsBelowTop = true; // department paths start below the top department (OUs)
    bool bRankGiven = false; // the mapping names a rank attribute
    double searchSeconds = 0; // the time the directory took to deliver the entries
};

// What the connection test found.
struct DirectoryTestReport
{
    QStringList serverAnswer; // what the server says of itself, line by line
    int entries = 0; // how many entries the user filter finds below the base DN
};

// Reads the directory the settings name, through the platform's LDAP client.
class DirectoryReader
{
public:
    explicit DirectoryReader(DirectorySettings settings);

    // Connects, binds, reads what the server says of itself and counts the entries of the filter.
    std::optional<DirectoryTestReport> test(QString* problem) const;

    // Every entry of the filter, read through the mapping. `going` is asked after each entry with the
    // number read so far; false stops the reading. nullopt with the reason when the directory or the
    // settings stop it: a sync never works from a part of the directory.
    std::optional<DirectorySnapshot> read(const std::function<bool(int)>& going, QString* problem) const;

    // The administrator's text for a failure: what went wrong, and what the server said.
    static QString describe(const DirectoryFailure& failure);

    // The text of a unique-ID value: AD's binary GUIDs as they are written, other binary values in hex.
    static QString uniqueIdText(const QString& attribute, const std::string& value);

private:
    // Marks the entries that the leaver filter finds.
    bool markFilteredLeavers(DirectoryBackend& backend, DirectorySnapshot& snapshot, QString* problem) const;

    DirectorySettings m_settings;
};

} // namespace sable
