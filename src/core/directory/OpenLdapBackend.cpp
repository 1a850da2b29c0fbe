// The directory client over OpenLDAP's libldap (everywhere but Windows).

#include "directory/DirectoryBackend.h"

#include <algorithm>
#include <cstring>
#include <ldap.h>

namespace sable {
namespace {

using Kind = DirectoryFailure::Kind;

bool mentionsTls(const std::string& text)
{
    return text.find("TLS") != std::string::npos || text.find("certificate") != std::string::npos
        || text.find("SSL") != std::string::npos;
}

Kind kindOf(int code, const std::string& detail)
{
    switch (code) {
    case LDAP_SERVER_DOWN:
    case LDAP_CONNECT_ERROR:
        return mentionsTls(detail) ? Kind::Tls : Kind::Unreachable;
    case LDAP_INVALID_CREDENTIALS:
    case LDAP_INAPPROPRIATE_AUTH:
    case LDAP_STRONG_AUTH_REQUIRED:
    case LDAP_CONFIDENTIALITY_REQUIRED:
    case LDAP_INSUFFICIENT_ACCESS:
        return Kind::BindRefused;
    case LDAP_NO_SUCH_OBJECT:
    case LDAP_INVALID_DN_SYNTAX:
        return Kind::NoSuchBase;
    case LDAP_FILTER_ERROR:
    case LDAP_INAPPROPRIATE_MATCHING:
    case LDAP_UNDEFINED_TYPE:
        return Kind::BadFilter;
    case LDAP_TIMEOUT:
    case LDAP_TIMELIMIT_EXCEEDED:
        return Kind::TimedOut;
    case LDAP_SIZELIMIT_EXCEEDED:
    case LDAP_ADMINLIMIT_EXCEEDED:
        return Kind::LimitExceeded;
    default:
        break;
    }
    return mentionsTls(detail) ? Kind::Tls : Kind::Other;
}

std::string urlOf(const DirectoryEndpoint& endpoint, bool bTls)
{
    const bool ipv6 = endpoint.host.find(':') != std::string::npos;
    return std::string(bTls ? "ldaps://" : "ldap://") + (ipv6 ? "[" : "") + endpoint.host + (ipv6 ? "]" : "") + ':'
        + std::to_string(endpoint.port) + '/';
}

// Whether something accepts connections at the endpoint's address: after a failed ldaps:// bind
// this tells a refused certificate (the library says only "can't contact") from a server that is
// not there.
bool isListening(const DirectoryEndpoint& endpoint)
{
    LDAP* probe = nullptr;
    if (ldap_initialize(&probe, urlOf(endpoint, false).c_str()) != LDAP_SUCCESS)
        return false;
    const timeval timeout {std::max(1, endpoint.timeoutSeconds), 0};
    ldap_set_option(probe, LDAP_OPT_NETWORK_TIMEOUT, &timeout);
    const bool listening = ldap_connect(probe) == LDAP_SUCCESS;
    ldap_unbind_ext_s(probe, nullptr, nullptr);
    return listening;
}

class OpenLdapBackend final : public DirectoryBackend
{
public:
    OpenLdapBackend() = default;
    ~OpenLdapBackend() override
    {
        if (m_ld)
            ldap_unbind_ext_s(m_ld, nullptr, nullptr);
    }
    OpenLdapBackend(const OpenLdapBackend&) = delete;
    OpenLdapBackend& operator=(const OpenLdapBackend&) = delete;

    bool open(const DirectoryEndpoint& endpoint, DirectoryFailure* failure) override;
    bool search(const std::string& base, DirectoryScope scope, const std::string& filter,
        const std::vector<std::string>& attributes, int pageSize, const std::function<bool(DirectoryRawEntry&)>& visit,
        DirectoryFailure* failure) override;

private:
    bool fail(int code, const char* serverText, DirectoryFailure* failure) const;
    bool setOptions(const DirectoryEndpoint& endpoint);
    // The entries of one page, handed to `visit`; false when it stopped.
    bool visitEntries(LDAPMessage* result, DirectoryEntryCollector& entries);
    // The paged-results cookie of a page's result; empty when the search is complete.
    static std::string nextCookie(LDAP* ld, LDAPControl** controls);

    // One search as the library takes it.
    struct Request
    {
        const char* base;
        int scope;
        const char* filter;
        char** names;
        int pageSize;
    };
    static constexpr int kFailed = -1;
    static constexpr int kNoMorePages = -2;
    // Sends the request of one page; its message ID, or kFailed after saying why.
    int requestPage(const Request& request, const std::string& cookie, DirectoryFailure* failure);
    // The whole answer to a page and the cookie of the next; nullptr after saying why.
    LDAPMessage* receivePage(int id, std::string* cookie, DirectoryFailure* failure);

    LDAP* m_ld = nullptr;
    timeval m_timeout {30, 0};
};

bool OpenLdapBackend::fail(int code, const char* serverText, DirectoryFailure* failure) const
{
    std::string detail = ldap_err2string(code);
    char* diagnostic = nullptr;
    if (!serverText && m_ld && ldap_get_option(m_ld, LDAP_OPT_DIAGNOSTIC_MESSAGE, &diagnostic) == LDAP_OPT_SUCCESS)
        serverText = diagnostic;
    if (serverText && *serverText)
        detail += std::string(" (") + serverText + ')';
    if (diagnostic)
        ldap_memfree(diagnostic);
    *failure = {kindOf(code, detail), code, detail};
    return false;
}

bool OpenLdapBackend::setOptions(const DirectoryEndpoint& endpoint)
{
    const int version = LDAP_VERSION3;
    const int demand = LDAP_OPT_X_TLS_DEMAND;
    const int newContext = 0;
    m_timeout = {std::max(1, endpoint.timeoutSeconds), 0};
    // Referrals are not followed: a directory that points elsewhere has answered for its part.
    bool ok = ldap_set_option(m_ld, LDAP_OPT_PROTOCOL_VERSION, &version) == LDAP_OPT_SUCCESS
        && ldap_set_option(m_ld, LDAP_OPT_REFERRALS, LDAP_OPT_OFF) == LDAP_OPT_SUCCESS
        && ldap_set_option(m_ld, LDAP_OPT_NETWORK_TIMEOUT, &m_timeout) == LDAP_OPT_SUCCESS
        && ldap_set_option(m_ld, LDAP_OPT_TIMEOUT, &m_timeout) == LDAP_OPT_SUCCESS
        && ldap_set_option(m_ld, LDAP_OPT_X_TLS_REQUIRE_CERT, &demand) == LDAP_OPT_SUCCESS;
    if (ok && !endpoint.caFile.empty())
        ok = ldap_set_option(m_ld, LDAP_OPT_X_TLS_CACERTFILE, endpoint.caFile.c_str()) == LDAP_OPT_SUCCESS;
    // The TLS settings of this connection take effect in a context of its own.
    return ok && ldap_set_option(m_ld, LDAP_OPT_X_TLS_NEWCTX, &newContext) == LDAP_OPT_SUCCESS;
}

bool OpenLdapBackend::open(const DirectoryEndpoint& endpoint, DirectoryFailure* failure)
{
    int rc = ldap_initialize(&m_ld, urlOf(endpoint, endpoint.bLdaps).c_str());
    if (rc != LDAP_SUCCESS)
        return fail(rc, nullptr, failure);
    if (!setOptions(endpoint))
        return fail(LDAP_PARAM_ERROR, "TLS options", failure);
    if (endpoint.bStartTls) {
        rc = ldap_start_tls_s(m_ld, nullptr, nullptr);
        if (rc != LDAP_SUCCESS) {
            fail(rc, nullptr, failure);
            if (failure->kind == Kind::Other || failure->kind == Kind::Unreachable)
                failure->kind = rc == LDAP_SERVER_DOWN && !mentionsTls(failure->detail) ? Kind::Unreachable : Kind::Tls;
            return false;
        }
    }
    berval credentials {static_cast<ber_len_t>(endpoint.password.size()), const_cast<char*>(endpoint.password.data())};
    rc = ldap_sasl_bind_s(m_ld, endpoint.bindDn.empty() ? nullptr : endpoint.bindDn.c_str(), LDAP_SASL_SIMPLE,
        &credentials, nullptr, nullptr, nullptr);
    if (rc != LDAP_SUCCESS) {
        fail(rc, nullptr, failure);
        // A server that will not take the bind at all (an empty password for a DN, say) refuses it.
        if (rc == LDAP_UNWILLING_TO_PERFORM || rc == LDAP_PROTOCOL_ERROR)
            failure->kind = Kind::BindRefused;
        if (endpoint.bLdaps && failure->kind == Kind::Unreachable && isListening(endpoint))
            failure->kind = Kind::Tls;
        return false;
    }
    return true;
}

bool OpenLdapBackend::visitEntries(LDAPMessage* result, DirectoryEntryCollector& entries)
{
    for (LDAPMessage* at = ldap_first_entry(m_ld, result); at; at = ldap_next_entry(m_ld, at)) {
        char* dn = ldap_get_dn(m_ld, at);
        entries.begin(dn ? dn : "");
        ldap_memfree(dn);
        BerElement* ber = nullptr;
        for (char* name = ldap_first_attribute(m_ld, at, &ber); name; name = ldap_next_attribute(m_ld, at, ber)) {
            const int index = entries.indexOf(name);
            if (berval** values = index >= 0 ? ldap_get_values_len(m_ld, at, name) : nullptr) {
                entries.add(index, values);
                ldap_value_free_len(values);
            }
            ldap_memfree(name);
        }
        ber_free(ber, 0);
        if (!entries.finish())
            return false;
    }
    return true;
}

std::string OpenLdapBackend::nextCookie(LDAP* ld, LDAPControl** controls)
{
    LDAPControl* paged = controls ? ldap_control_find(LDAP_CONTROL_PAGEDRESULTS, controls, nullptr) : nullptr;
    ber_int_t estimate = 0;
    berval cookie {0, nullptr};
    if (!paged || ldap_parse_pageresponse_control(ld, paged, &estimate, &cookie) != LDAP_SUCCESS)
        return {};
    std::string out(cookie.bv_val ? cookie.bv_val : "", cookie.bv_len);
    ber_memfree(cookie.bv_val);
    return out;
}

int OpenLdapBackend::requestPage(const Request& request, const std::string& cookie, DirectoryFailure* failure)
{
    LDAPControl* page = nullptr;
    berval cookieValue {static_cast<ber_len_t>(cookie.size()), const_cast<char*>(cookie.data())};
    // Not critical: a server without paging answers in one piece, within its size limit.
    if (request.pageSize > 0
        && ldap_create_page_control(m_ld, request.pageSize, &cookieValue, 0, &page) != LDAP_SUCCESS)
        return fail(LDAP_NO_MEMORY, nullptr, failure), kFailed;
    LDAPControl* controls[] = {page, nullptr};
    timeval timeout = m_timeout;
    int id = kFailed;
    const int rc = ldap_search_ext(m_ld, request.base, request.scope, request.filter, request.names, 0,
        page ? controls : nullptr, nullptr, &timeout, LDAP_NO_LIMIT, &id);
    ldap_control_free(page);
    return rc == LDAP_SUCCESS ? id : (fail(rc, nullptr, failure), kFailed);
}

LDAPMessage* OpenLdapBackend::receivePage(int id, std::string* cookie, DirectoryFailure* failure)
{
    LDAPMessage* result = nullptr;
    timeval timeout = m_timeout;
    const int type = ldap_result(m_ld, id, LDAP_MSG_ALL, &timeout, &result);
    if (type <= 0) {
        int code = LDAP_TIMEOUT;
        if (type < 0)
            ldap_get_option(m_ld, LDAP_OPT_RESULT_CODE, &code);
        else
            ldap_abandon_ext(m_ld, id, nullptr, nullptr);
        ldap_msgfree(result);
        fail(code, nullptr, failure);
        return nullptr;
    }
    int code = LDAP_SUCCESS;
    char* serverText = nullptr;
    LDAPControl** controls = nullptr;
    const int rc = ldap_parse_result(m_ld, result, &code, nullptr, &serverText, nullptr, &controls, 0);
    if (rc != LDAP_SUCCESS || code != LDAP_SUCCESS) {
        fail(rc != LDAP_SUCCESS ? rc : code, serverText, failure);
        ldap_memfree(serverText);
        ldap_controls_free(controls);
        ldap_msgfree(result);
        return nullptr;
    }
    *cookie = nextCookie(m_ld, controls);
    ldap_memfree(serverText);
    ldap_controls_free(controls);
    return result;
}

bool OpenLdapBackend::search(const std::string& base, DirectoryScope scope, const std::string& filter,
    const std::vector<std::string>& attributes, int pageSize, const std::function<bool(DirectoryRawEntry&)>& visit,
    DirectoryFailure* failure)
{
    DirectoryEntryCollector entries(attributes, visit);
    std::vector<char*> names;
    for (const std::string& name : attributes)
        names.push_back(const_cast<char*>(name.c_str()));
    names.push_back(nullptr);
    const Request request {base.c_str(), scope == DirectoryScope::Base ? LDAP_SCOPE_BASE : LDAP_SCOPE_SUBTREE,
        filter.c_str(), names.data(), pageSize};
    std::string cookie;
    int id = requestPage(request, cookie, failure);
    while (id != kFailed && id != kNoMorePages) {
        LDAPMessage* result = receivePage(id, &cookie, failure);
        if (!result)
            return false;
        // The server prepares the next page while this one is handed over.
        id = pageSize > 0 && !cookie.empty() ? requestPage(request, cookie, failure) : kNoMorePages;
        const bool going = id != kFailed && visitEntries(result, entries);
        ldap_msgfree(result);
        if (id == kFailed)
            return false;
        if (!going) {
            if (id != kNoMorePages)
                ldap_abandon_ext(m_ld, id, nullptr, nullptr);
            *failure = {Kind::Stopped, 0, {}};
            return false;
        }
    }
    return id == kNoMorePages;
}

} // namespace

std::unique_ptr<DirectoryBackend> createDirectoryBackend()
{
    return std::make_unique<OpenLdapBackend>();
}

} // namespace sable
