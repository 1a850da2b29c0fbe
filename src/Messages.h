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

// Organisation chart
inline const QString kNoRank = QStringLiteral("직급없음");
inline const QString kLoadOpening = QStringLiteral("데이터 베이스를 열고 있습니다.");
inline const QString kLoadMembers = QStringLiteral("사용자 정보를 읽어오고 있습니다.");
inline const QString kLoadGroups = QStringLiteral("그룹 정보를 읽어오고 있습니다.");
inline const QString kLoadRelations = QStringLiteral("그룹에 사용자를 추가중입니다.");
inline const QString kLoadOpenFailed = QStringLiteral("데이터 베이스 파일을 여는중 오류가 발생했습니다.");
inline const QString kLoadReadFailed = QStringLiteral("데이터 베이스를 읽는 중 오류가 발생했습니다.");
inline const QString kSaveQuestion
    = QStringLiteral("조직도 및 개인정보가 삭제후  새로 저장됩니다.\n\n저장하시겠습니까?");
inline const QString kSaveInEditor = QStringLiteral("편집화면에서 저장버튼을 눌러주세요.");
inline const QString kSaveEmptyIdOrPassword = QStringLiteral("아이디나 비밀번호가 비어있는 아이디가 있습니다.");
inline const QString kSaveDatabaseError = QStringLiteral("데이터 베이스에 오류가 발생했습니다.");

// File box
inline const QString kLevelNone = QStringLiteral("권한 없음");
inline const QString kLevelRead = QStringLiteral("읽기");
inline const QString kLevelReadWrite = QStringLiteral("읽기/쓰기");

} // namespace sable::Msg
