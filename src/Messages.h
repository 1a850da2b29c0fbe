#pragma once

// Every text the console shows, in one place. Texts of the server's own console are kept byte for
// byte as administrators know them, spacing and spelling included.

#include <QString>

namespace sable::Msg {

// Start-up and database
inline const QString kDatabaseOpenFailed = QStringLiteral("데이터 베이스를 열지 못했습니다.");
inline const QString kConnectionStringEmpty = QStringLiteral("연결 문자열이 비어 있습니다.");
inline const QString kConnectionStringUnsupported = QStringLiteral("지원하지 않는 연결 문자열입니다: %1");
inline const QString kNotConnected = QStringLiteral("데이터베이스에 연결되어 있지 않습니다.");

// Server control
inline const QString kServiceStartFailed = QStringLiteral("%1 서비스 실행에 실패했습니다.");
inline const QString kDatabaseSettingsChanged
    = QStringLiteral("***세이블 매니저를 종료합니다***\n\n데이터 데이스 설정이 변경 되었습니다. . \n조직도등의 변경이 "
                     "필요하신 분은 다시 세이블매니저를 실행해 주세요");

} // namespace sable::Msg
