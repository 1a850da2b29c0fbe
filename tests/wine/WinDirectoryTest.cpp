// The Wldap32 backend of the directory client against the OpenLDAP server of the test fixture,
// cross-compiled with MinGW-w64 and run under Wine. Standard C++ only.
// usage: WinDirectoryTest.exe PORT CLOSED_PORT   (exit code: the number of failed checks)

#include "directory/DirectoryBackend.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using sable::DirectoryFailure;

namespace {

int failures = 0;

void check(bool ok, const std::string& what, const DirectoryFailure& failure = {})
{
    std::printf("%s: %s%s\n", ok ? "ok" : "FAIL", what.c_str(), ok ? "" : (" (" + failure.detail + ')').c_str());
    failures += ok ? 0 : 1;
}

sable::DirectoryEndpoint endpoint(int port, const char* password)
{
    sable::DirectoryEndpoint e;
    e.host = "127.0.0.1";
    e.port = port;
    e.bindDn = "cn=reader,dc=sable,dc=test";
    e.password = password;
    e.timeoutSeconds = 10;
    return e;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
        return 100;
    const int port = std::atoi(argv[1]);
    DirectoryFailure failure;

    auto reader = sable::createDirectoryBackend();
    check(reader->open(endpoint(port, "reader-secret"), &failure), "bind as reader", failure);
    int entries = 0;
    bool hangul = false;
    const bool searched = reader->search(
        "dc=sable,dc=test", sable::DirectoryScope::Subtree, "(objectClass=inetOrgPerson)", {"cn", "uid"}, 3,
        [&](sable::DirectoryRawEntry& entry) {
            ++entries;
            hangul = hangul
                || entry.dn
                    == "uid=jychoi,ou=\xEC\x97\xB0\xEA\xB5\xAC\xEC\x86\x8C,ou=\xEB\xB3\xB8\xEC\x82\xAC,dc=sable,dc="
                       "test";
            return entry.values.size() == 2;
        },
        &failure);
    check(searched && entries == 14, "paged search of 3 a page finds the 14 people", failure);
    check(hangul, "a DN with Hangul arrives as UTF-8");
    check(!reader->search(
              "ou=none,dc=sable,dc=test", sable::DirectoryScope::Subtree, "(objectClass=*)", {"1.1"}, 3,
              [](sable::DirectoryRawEntry&) { return true; }, &failure)
            && failure.kind == DirectoryFailure::Kind::NoSuchBase,
        "a base that is not there", failure);

    auto refused = sable::createDirectoryBackend();
    check(!refused->open(endpoint(port, "wrong"), &failure) && failure.kind == DirectoryFailure::Kind::BindRefused,
        "a wrong password is refused", failure);
    auto nobody = sable::createDirectoryBackend();
    check(!nobody->open(endpoint(std::atoi(argv[2]), "reader-secret"), &failure)
            && failure.kind == DirectoryFailure::Kind::Unreachable,
        "nobody listens", failure);
    return failures;
}
