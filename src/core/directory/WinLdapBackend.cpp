// The directory client over Wldap32, the LDAP library of Windows. Standard C++ and Win32 only.

#include "directory/DirectoryBackend.h"
#include "platform/WinText.h"

// winber.h needs the types of winldap.h.
// clang-format off
#include <windows.h>
#include <winldap.h>
#include <winber.h>
// clang-format on

#include <algorithm>

namespace sable {
namespace {

using Kind = DirectoryFailure::Kind;
using WinText::narrow;
using WinText::widen;

Kind kindOf(ULONG code)
{
    switch (code) {
    case LDAP_SERVER_DOWN:
    case LDAP_CONNECT_ERROR:
        return Kind::Unreachable;
    case LDAP_INVALID_CREDENTIALS:
    case LDAP_INAPPROPRIATE_AUTH:
    case LDAP_STRONG_AUTH_REQUIRED:
    case LDAP_CONFIDENTIALITY_REQUIRED:
    case LDAP_INSUFFICIENT_RIGHTS:
    case LDAP_UNWILLING_TO_PERFORM:
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
    case LDAP_ADMIN_LIMIT_EXCEEDED:
        return Kind::LimitExceeded;
    default:
        break;
    }
    return Kind::Other;
}

// A wide string that the library may take as a non-const pointer.
class WideText
{
public:
    explicit WideText(const std::string& utf8)
        : m_text(widen(utf8))
    { }
    PWCHAR get() { return m_text.data(); }
    PWCHAR orNull() { return m_text.empty() ? nullptr : m_text.data(); }

private:
    std::wstring m_text;
};

class WinLdapBackend final : public DirectoryBackend
{
public:
    WinLdapBackend() = default;
    ~WinLdapBackend() override
    {
        if (m_ld)
            ldap_unbind(m_ld);
    }
    WinLdapBackend(const WinLdapBackend&) = delete;
    WinLdapBackend& operator=(const WinLdapBackend&) = delete;

    bool open(const DirectoryEndpoint& endpoint, DirectoryFailure* failure) override;
    bool search(const std::string& base, DirectoryScope scope, const std::string& filter,
        const std::vector<std::string>& attributes, int pageSize, const std::function<bool(DirectoryRawEntry&)>& visit,
        DirectoryFailure* failure) override;

private:
    bool fail(ULONG code, DirectoryFailure* failure) const;
    bool visitEntries(LDAPMessage* result, DirectoryEntryCollector& entries);

    LDAP* m_ld = nullptr;
    LDAP_TIMEVAL m_timeout {30, 0};
};

bool WinLdapBackend::fail(ULONG code, DirectoryFailure* failure) const
{
    std::string detail;
    if (const PWCHAR text = ldap_err2stringW(code))
        detail = narrow(text);
    PWCHAR serverText = nullptr;
    if (m_ld && ldap_get_optionW(m_ld, LDAP_OPT_SERVER_ERROR, &serverText) == LDAP_SUCCESS && serverText) {
        if (*serverText)
            detail += " (" + narrow(serverText) + ')';
        ldap_memfreeW(serverText);
    }
    *failure = {kindOf(code), static_cast<int>(code), detail};
    return false;
}

bool WinLdapBackend::open(const DirectoryEndpoint& endpoint, DirectoryFailure* failure)
{
    WideText host(endpoint.host);
    m_ld = endpoint.bLdaps ? ldap_sslinitW(host.get(), static_cast<ULONG>(endpoint.port), 1)
                           : ldap_initW(host.get(), static_cast<ULONG>(endpoint.port));
    if (!m_ld)
        return fail(LdapGetLastError(), failure);
    ULONG version = LDAP_VERSION3;
    ULONG seconds = static_cast<ULONG>(std::max(1, endpoint.timeoutSeconds));
    m_timeout = {static_cast<LONG>(seconds), 0};
    ldap_set_optionW(m_ld, LDAP_OPT_PROTOCOL_VERSION, &version);
    ldap_set_optionW(m_ld, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    ldap_set_optionW(m_ld, LDAP_OPT_TIMELIMIT, &seconds);
    ULONG rc = ldap_connect(m_ld, &m_timeout);
    if (rc != LDAP_SUCCESS) {
        fail(rc, failure);
        if (endpoint.bLdaps && rc != LDAP_TIMEOUT)
            failure->kind = Kind::Tls;
        return false;
    }
    if (endpoint.bStartTls) {
        ULONG serverAnswer = 0;
        LDAPMessage* result = nullptr;
        rc = ldap_start_tls_sW(m_ld, &serverAnswer, &result, nullptr, nullptr);
        if (result)
            ldap_msgfree(result);
        if (rc != LDAP_SUCCESS) {
            fail(rc, failure);
            failure->kind = Kind::Tls;
            return false;
        }
    }
    WideText dn(endpoint.bindDn);
    WideText password(endpoint.password);
    rc = ldap_bind_sW(m_ld, dn.orNull(), endpoint.bindDn.empty() ? nullptr : password.get(), LDAP_AUTH_SIMPLE);
    return rc == LDAP_SUCCESS || fail(rc, failure);
}

bool WinLdapBackend::visitEntries(LDAPMessage* result, DirectoryEntryCollector& entries)
{
    for (LDAPMessage* at = ldap_first_entry(m_ld, result); at; at = ldap_next_entry(m_ld, at)) {
        const PWCHAR dn = ldap_get_dnW(m_ld, at);
        entries.begin(dn ? narrow(dn) : std::string());
        ldap_memfreeW(dn);
        BerElement* ber = nullptr;
        for (PWCHAR name = ldap_first_attributeW(m_ld, at, &ber); name; name = ldap_next_attributeW(m_ld, at, ber)) {
            const int index = entries.indexOf(narrow(name));
            if (berval** values = index >= 0 ? ldap_get_values_lenW(m_ld, at, name) : nullptr) {
                entries.add(index, values);
                ldap_value_free_len(values);
            }
            ldap_memfreeW(name);
        }
        if (ber)
            ber_free(ber, 0);
        if (!entries.finish())
            return false;
    }
    return true;
}

bool WinLdapBackend::search(const std::string& base, DirectoryScope scope, const std::string& filter,
    const std::vector<std::string>& attributes, int pageSize, const std::function<bool(DirectoryRawEntry&)>& visit,
    DirectoryFailure* failure)
{
    DirectoryEntryCollector entries(attributes, visit);
    std::vector<std::wstring> wideNames;
    for (const std::string& name : attributes)
        wideNames.push_back(widen(name));
    std::vector<PWCHAR> names;
    for (std::wstring& name : wideNames)
        names.push_back(name.data());
    names.push_back(nullptr);
    WideText wideBase(base);
    WideText wideFilter(filter);
    const ULONG ldapScope = scope == DirectoryScope::Base ? LDAP_SCOPE_BASE : LDAP_SCOPE_SUBTREE;
    if (pageSize <= 0) {
        LDAPMessage* result = nullptr;
        const ULONG rc = ldap_search_ext_sW(m_ld, wideBase.get(), ldapScope, wideFilter.get(), names.data(), 0, nullptr,
            nullptr, &m_timeout, 0, &result);
        const bool going = rc == LDAP_SUCCESS && visitEntries(result, entries);
        if (result)
            ldap_msgfree(result);
        if (rc != LDAP_SUCCESS)
            return fail(rc, failure);
        if (!going)
            *failure = {Kind::Stopped, 0, {}};
        return going;
    }
    PLDAPSearch paged = ldap_search_init_pageW(m_ld, wideBase.get(), ldapScope, wideFilter.get(), names.data(), 0,
        nullptr, nullptr, static_cast<ULONG>(m_timeout.tv_sec), 0, nullptr);
    if (!paged)
        return fail(LdapGetLastError(), failure);
    bool ok = true;
    for (;;) {
        LDAPMessage* result = nullptr;
        ULONG total = 0;
        const ULONG rc = ldap_get_next_page_s(m_ld, paged, &m_timeout, static_cast<ULONG>(pageSize), &total, &result);
        if (rc == LDAP_NO_RESULTS_RETURNED) {
            if (result)
                ldap_msgfree(result);
            break;
        }
        const bool going = rc == LDAP_SUCCESS && visitEntries(result, entries);
        if (result)
            ldap_msgfree(result);
        if (rc != LDAP_SUCCESS) {
            ok = fail(rc, failure);
            break;
        }
        if (!going) {
            *failure = {Kind::Stopped, 0, {}};
            ok = false;
            break;
        }
    }
    ldap_search_abandon_page(m_ld, paged);
    return ok;
}

} // namespace

std::unique_ptr<DirectoryBackend> createDirectoryBackend()
{
    return std::make_unique<WinLdapBackend>();
}

} // namespace sable
