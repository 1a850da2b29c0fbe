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

// Registration mail
inline const QString kRegistrationMailCommand = QStringLiteral("등록메일(설치파일) 전송(&M)");
inline const QString kRegistrationMailTitle = QStringLiteral("등록메일(설치파일) 전송");
inline const QString kMailSenderNamePrompt = QStringLiteral("☞보내는 사람의 이름을 입력하세요(&N)");
inline const QString kMailSubjectPrompt = QStringLiteral("☞발송 메일의 제목을 입력하세요(&S)");
inline const QString kMailMemoPrompt = QStringLiteral("☞메일에 추가할 내용을 입력하세요(&A)");
inline const QString kMailRecipientHint
    = QStringLiteral("☞조직도 편집의 사원목록 리스트에서 사원선택을 하신 후 오른쪽 버튼을 누르시면 됩니다.");
inline const QString kMailSendButton = QStringLiteral("메일전송(&M)");
inline const QString kMailResetButton = QStringLiteral("초기화(D)");
inline const QString kMailCancelButton = QStringLiteral("취소(&C)");
inline const QString kMailDefaultSenderName = QStringLiteral("세이블관리자");
inline const QString kMailDefaultSubject = QStringLiteral("Sable Server에 등록되셨습니다.");
inline const QString kMailDefaultMemo = QStringLiteral(
    "안녕하세요?\r\nSable Messenger에 등록된 사용자 정보를 발송합니다.\r\n아래의 등록정보(서버주소,아이디,비밀번호)로 "
    "로그인하시고, 비밀번호를 변경해주세요.");
inline const QString kRecipientName = QStringLiteral("이름");
inline const QString kRecipientId = QStringLiteral("아이디");
inline const QString kRecipientEmail = QStringLiteral("E-Mail");
inline const QString kRecipientPassword = QStringLiteral("암호");
inline const QString kRecipientResult = QStringLiteral("결과");
inline const QString kMailSent = QStringLiteral("성공");
inline const QString kMailFailed = QStringLiteral("실패");
inline const QString kTemplateOpenFailed = QStringLiteral("템플릿 파일을 여는데 실패했습니다.");
inline const QString kMailSendingDone = QStringLiteral("메일을 전송이 끝났습니다.");
inline const QString kMailTransportError = QStringLiteral("메일 전송 도중 오류가 발생하였습니다.");
inline const QString kMailStopButton = QStringLiteral("전송 중지(&T)");
inline const QString kMailServerButton = QStringLiteral("메일 서버 설정(&E)...");
inline const QString kMailServerNotSet
    = QStringLiteral("메일 서버가 설정되지 않았습니다. 메일 서버 설정에서 서버 주소와 보내는 사람 주소를 입력하세요.");
inline const QString kMailServerTitle = QStringLiteral("메일 서버 설정");
inline const QString kMailServerHost = QStringLiteral("서버 주소(&H)");
inline const QString kMailServerPort = QStringLiteral("포트(&P)");
inline const QString kMailServerSecurity = QStringLiteral("보안 연결(&S)");
inline const QString kMailSecurityNone = QStringLiteral("없음");
inline const QString kMailSecurityStartTls = QStringLiteral("STARTTLS");
inline const QString kMailSecurityTls = QStringLiteral("SSL/TLS");
inline const QString kMailServerUser = QStringLiteral("로그인 이름(&U)");
inline const QString kMailServerPassword = QStringLiteral("암호(&W)");
inline const QString kMailServerPasswordKept = QStringLiteral("저장된 암호를 쓰려면 비워 두세요");
inline const QString kMailServerSender = QStringLiteral("보내는 사람 주소(&F)");
inline const QString kMailServerTestButton = QStringLiteral("연결 시험(&T)");
inline const QString kMailServerTesting = QStringLiteral("서버에 연결하고 있습니다...");
inline const QString kMailServerTestPassed = QStringLiteral("연결에 성공했습니다.");
inline const QString kMailServerTestFailed = QStringLiteral("연결에 실패했습니다.");
inline const QString kMailServerOkButton = QStringLiteral("확인");
inline const QString kMailServerCancelButton = QStringLiteral("취소");
inline const QString kMailServerSaveFailed = QStringLiteral("메일 서버 설정을 저장하지 못했습니다.");

} // namespace sable::Msg
