#pragma once

// Standard C++ only: the Windows backend is built and checked without Qt.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sable {

// Where and how to reach a directory server. Texts are UTF-8.
struct DirectoryEndpoint
{
    std::string host;
    int port = 389;
    bool bLdaps = false; // TLS from the first byte
    bool bStartTls = false; // a plain connection upgraded before the bind
    std::string caFile; // PEM certificates to trust; empty: the system's (always the system's on Windows)
    std::string bindDn; // empty: an anonymous bind
    std::string password;
    int timeoutSeconds = 30; // for the connection and for each request
};

enum class DirectoryScope
{
    Base,
    Subtree,
};

// Why a directory operation failed: the kind decides what the administrator is told, the detail
// (the library's text and the server's own message) says what the server said.
struct DirectoryFailure
{
    enum class Kind
    {
        None,
        Unreachable,
        Tls,
        BindRefused,
        NoSuchBase,
        BadFilter,
        TimedOut,
        LimitExceeded, // the server returned part of the result
        Stopped, // the caller stopped the search
        Other,
    };
    Kind kind = Kind::None;
    int code = 0; // the library's result code
    std::string detail;
};

// One entry of a search: its DN and the values of the attributes asked for, in the order asked.
struct DirectoryRawEntry
{
    std::string dn;
    std::vector<std::vector<std::string>> values;
};

// The few operations of the LDAP client library that the sync needs. One object is one connection.
class DirectoryBackend
{
public:
    virtual ~DirectoryBackend() = default;

    // Connects, secures the connection as the endpoint says and binds; false with the reason.
    virtual bool open(const DirectoryEndpoint& endpoint, DirectoryFailure* failure) = 0;

    // Searches below `base`. With pageSize > 0 the results come in pages of that many entries (the
    // paged-results control), so that a server with a limit per request still delivers them all.
    // Attribute names compare without regard to case; "1.1" asks for none. `visit` sees every entry
    // and may take its values; when it returns false the search ends as Stopped.
    virtual bool search(const std::string& base, DirectoryScope scope, const std::string& filter,
        const std::vector<std::string>& attributes, int pageSize, const std::function<bool(DirectoryRawEntry&)>& visit,
        DirectoryFailure* failure)
        = 0;
};

// The platform's LDAP client: OpenLDAP's libldap, or Wldap32 on Windows.
std::unique_ptr<DirectoryBackend> createDirectoryBackend();

// Makes the entries of a search out of what the library returns, one at a time, and hands each to
// the search's visitor: the backends keep only their library's calls.
class DirectoryEntryCollector
{
public:
    // `attributes` as the search asked for them; `visit` must outlive the collector.
    DirectoryEntryCollector(
        const std::vector<std::string>& attributes, const std::function<bool(DirectoryRawEntry&)>& visit);

    // Starts the next entry, without values: the visitor may have taken the last one's.
    void begin(std::string dn);
    // Which requested attribute a returned attribute description is ("mail;binary" is "mail"); -1
    // for none.
    int indexOf(std::string_view returned) const;
    // Adds the values of the attribute at `index` from the library's null-terminated array (both
    // libraries' berval holds bv_val and bv_len).
    template <typename Value>
    void add(int index, Value** values)
    {
        for (; *values; ++values)
            m_entry.values[static_cast<size_t>(index)].emplace_back((*values)->bv_val, (*values)->bv_len);
    }
    // Hands the entry to the visitor; false when it ends the search.
    bool finish() { return m_visit(m_entry); }

private:
    std::vector<std::string> m_wanted; // the requested names in lower case
    const std::function<bool(DirectoryRawEntry&)>& m_visit;
    DirectoryRawEntry m_entry;
};

} // namespace sable
