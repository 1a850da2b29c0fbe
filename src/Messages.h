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
// Client presentation settings: logo and caption
inline const QString kLogoTitle = QStringLiteral("로고 설정");
inline const QString kLogoIntro = QStringLiteral(
    "세이블메신저 클라이언트의 로그인창과 메인창의 상단에 표기될 아이콘과 로고명을 설정할 수 있습니다.");
inline const QString kLogoIconHeading = QStringLiteral("☞ 아이콘 설정");
inline const QString kLogoCaptionHeading = QStringLiteral("☞ 로고 설정");
inline const QString kLogoCaptionNote = QStringLiteral("※ 한글 11자를 넘지 못합니다.");
inline const QString kLogoDefaultIcon = QStringLiteral("기본아이콘");
inline const QString kLogoUserIcon = QStringLiteral("사용자정의 아이콘");
inline const QString kLogoBrowse = QStringLiteral("찾기");
inline const QString kLogoOk = QStringLiteral("확인(&O)");
inline const QString kLogoCancel = QStringLiteral("취소(&C)");
inline const QString kIconFileDialogTitle = QStringLiteral("아이콘파일 찾기");
inline const QString kIconFileFilter = QStringLiteral("ico Files (*.ico)");
inline const QString kIconOpenFailed = QStringLiteral("파일열기 실패");
inline const QString kIconTooLarge = QStringLiteral("10K 미만의 ICO파일로 지정해주시기 바랍니다");
inline const QString kIconNotAnIcon
    = QStringLiteral("아이콘(ICO) 형식의 파일이 아닙니다. ICO파일로 지정해주시기 바랍니다");
inline const QString kLogoPreview = QStringLiteral("미리 보기");
inline const QString kSendFailed = QStringLiteral("전송 실패");

// Client presentation settings: home page links
inline const QString kHomePageTitle = QStringLiteral("홈페이지 설정");
inline const QString kHomePageIntro = QStringLiteral(
    "세이블메신저 클라이언트 상단의 [홈페이지로 이동]버튼 클릭 시 이동하게 될 주소를 설정할 수 있습니다.");
inline const QString kHomePageHeading = QStringLiteral("☞ 홈페이지 주소 입력");
inline const QString kHomePageExample
    = QStringLiteral("예) http://www.example.com\n     http://mail.example.com/login.asp?id=%ID&pass=%PASS");
inline const QString kHomePageNameColumn = QStringLiteral("표시이름");
inline const QString kHomePageAddressColumn = QStringLiteral("사이트 주소");
inline const QString kHomePageAdd = QStringLiteral("추가(&A)");
inline const QString kHomePageRemove = QStringLiteral("삭제(&D)");
inline const QString kHomePageEdit = QStringLiteral("편집(&E)");
inline const QString kHomePageUp = QStringLiteral("위로");
inline const QString kHomePageDown = QStringLiteral("아래로");
inline const QString kHomePageOk = QStringLiteral("확인 (&O)");
inline const QString kHomePageCancel = QStringLiteral("취소 (&C)");
inline const QString kHomePageVendorName = QStringLiteral("세이블메신저 홈페이지");
inline const QString kHomePageListFull = QStringLiteral("더이상 추가하실수 없습니다.");
inline const QString kAddSiteTitle = QStringLiteral("사이트 추가");
inline const QString kEditSiteTitle = QStringLiteral("사이트 편집");
inline const QString kAddSiteName = QStringLiteral("표시될 이름:");
inline const QString kAddSiteAddress = QStringLiteral("사이트주소(필수):");
inline const QString kAddSiteNote = QStringLiteral("* 표시될 이름을 기입하지 않으면 사이트주소가 표시됩니다.");
inline const QString kAddSiteForbidden
    = QStringLiteral("표시이름과 사이트 주소에 다음 문자를 입력하실수 없습니다.\n\t%1");
inline const QString kAddSiteEmpty = QStringLiteral("값을 입력되지 않았습니다.");
inline const QString kOk = QStringLiteral("확인");
inline const QString kCancel = QStringLiteral("취소");

// Client presentation settings: file session servers
inline const QString kFileServerTitle = QStringLiteral("파일 서버 설정");
inline const QString kFileServerEditTitle = QStringLiteral("파일 서버 추가/편집");
inline const QString kFileServerAddressColumn = QStringLiteral("IP 주소");
inline const QString kFileServerPortColumn = QStringLiteral("Port 번호");
inline const QString kFileServerUsageColumn = QStringLiteral("사용여부");
inline const QString kFileServerEnabled = QStringLiteral("사용함");
inline const QString kFileServerDisabled = QStringLiteral("사용안함");
inline const QString kFileServerAdd = QStringLiteral("추가(&A)");
inline const QString kFileServerRemove = QStringLiteral("제거(&R)");
inline const QString kFileServerEdit = QStringLiteral("편집(&E)");
inline const QString kFileServerUse = QStringLiteral("이 서버를 사용함(&U)");
inline const QString kFileServerNote
    = QStringLiteral("주의: 파일서버가 실행중인지 확인하신 이후에 추가 또는 편집 해주시기 바랍니다.");

} // namespace sable::Msg
