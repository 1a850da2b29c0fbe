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

// Database settings program
inline const QString kSetDbTitle = QStringLiteral("데이터베이스 설정");
inline const QString kSetDbKind = QStringLiteral("데이터베이스 종류");
inline const QString kSetDbEmbedded = QStringLiteral("내장 데이터베이스 파일");
inline const QString kSetDbSqlServer = QStringLiteral("SQL Server");
inline const QString kSetDbPostgreSql = QStringLiteral("PostgreSQL");
inline const QString kSetDbFile = QStringLiteral("파일:");
inline const QString kSetDbBrowse = QStringLiteral("찾아보기...");
inline const QString kSetDbServerAddress = QStringLiteral("서버 주소:");
inline const QString kSetDbHost = QStringLiteral("호스트:");
inline const QString kSetDbPort = QStringLiteral("포트:");
inline const QString kSetDbDatabase = QStringLiteral("데이터베이스:");
inline const QString kSetDbLogin = QStringLiteral("로그인:");
inline const QString kSetDbUser = QStringLiteral("사용자:");
inline const QString kSetDbPassword = QStringLiteral("암호:");
inline const QString kSetDbTest = QStringLiteral("연결 테스트");
inline const QString kSetDbOk = QStringLiteral("확인");
inline const QString kSetDbCancel = QStringLiteral("취소");
inline const QString kSetDbTestSucceeded = QStringLiteral("연결에 성공했습니다.");
inline const QString kSetDbFileWillBeCreated
    = QStringLiteral("파일이 없습니다. 확인을 누르면 새 데이터베이스를 만듭니다.");
inline const QString kSetDbIncomplete = QStringLiteral("입력하지 않은 항목이 있습니다.");
inline const QString kSetDbTooLong = QStringLiteral("연결 정보가 너무 깁니다. (최대 %1바이트)");
inline const QString kSetDbConnectFailed = QStringLiteral("데이터베이스에 연결하지 못했습니다.\n\n%1");
inline const QString kSetDbCreateTables
    = QStringLiteral("선택한 데이터베이스에 조직도 테이블이 없습니다.\n테이블을 만드시겠습니까?");
inline const QString kSetDbCopyChart
    = QStringLiteral("현재 데이터베이스의 조직도와 파일박스 권한을 새 데이터베이스로 복사하시겠습니까?");
inline const QString kSetDbCreateFailed = QStringLiteral("테이블을 만들지 못했습니다.\n\n%1");
inline const QString kSetDbSourceFailed = QStringLiteral("현재 데이터베이스를 열지 못했습니다.\n\n%1");
inline const QString kSetDbCopyFailed
    = QStringLiteral("조직도를 복사하지 못했습니다. 데이터베이스 설정은 바뀌지 않았습니다.\n\n%1");
inline const QString kSetDbWriteFailed = QStringLiteral("데이터베이스 설정을 저장하지 못했습니다.");

} // namespace sable::Msg
