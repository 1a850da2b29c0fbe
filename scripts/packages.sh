# The Debian packages of each command, sourced by ./run and ./test.
# shellcheck disable=SC2034
build_packages=(
    cmake ninja-build g++ pkgconf
    qt6-base-dev qt6-base-dev-tools libqt6svg6 libqt6sql6-sqlite libqt6sql6-odbc libqt6sql6-psql
    unixodbc-dev libcurl4-openssl-dev libsqlite3-dev libpq-dev zlib1g-dev
    libldap-dev
)
run_packages=(
    xvfb xauth fonts-nanum libsqliteodbc odbc-postgresql qt6-translations-l10n
)
test_packages=(
    postgresql libsqliteodbc odbc-postgresql python3 xvfb xauth fonts-nanum
    python3-aiosmtpd qt6-translations-l10n
    supervisor g++-mingw-w64-x86-64 wine64
    clang-format
    dpkg-dev file desktop-file-utils appstream man-db groff-base bsdextrautils
    slapd ldap-utils openssl
)
