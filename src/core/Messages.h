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

// Chart editing
inline const QString kNewDepartment = QStringLiteral("새 부서");
inline const QString kDeleteDepartmentQuestion = QStringLiteral(
    "조직도가 삭제 되며 그룹에 속한 사용자는 더 이상 그룹에 속하지 않게 됩니다.\n\n계속 하시겠습니까?");
inline const QString kDuplicateId = QStringLiteral("이미 존재하는 아이디입니다.");
inline const QString kFirstMemberTip
    = QStringLiteral("그룹에 추가되지 않은 사용자는 희미하게 표시됩니다.\n드래그해서 왼쪽 조직도에 추가하세요.");
inline const QString kTooLong = QStringLiteral("%1자를 초과할 수 없습니다.");
inline const QString kEnterPassword = QStringLiteral("비밀번호를 입력하세요.");
inline const QString kDeleteUsersQuestion = QStringLiteral("선택된 사용자를 삭제하시겠습니까?");
inline const QString kAddToDepartment = QStringLiteral("[%1]에 추가");
inline const QString kEmptyTreeTip = QStringLiteral("마우스 오른쪽 버튼을 눌러서 부서를 추가하세요.");
inline const QString kNewRank = QStringLiteral("새 직급");
inline const QString kNewRankNumbered = QStringLiteral("새 직급 (%1)");
inline const QString kDuplicateRank = QStringLiteral("이미 같은 직급이 존재합니다.");
inline const QString kDeleteRankQuestion
    = QStringLiteral("삭제된 직급을 가지고 있는 사용자는 직급이 없어지게 됩니다.\n직급을 삭제하시겠습니까?");
inline const QString kEmptyRankListTip = QStringLiteral("마우스 오른쪽 버튼을 눌러서 직급을 추가하세요.");

// The chart editor and the rank editor
inline const QString kChartEditorTitle = QStringLiteral("조직도 편집");
inline const QString kTreeTitle = QStringLiteral("조직도");
inline const QString kMemberListTitle = QStringLiteral("사원 목록");
inline const QString kRankEditorTitle = QStringLiteral("직급도 편집");
inline const QString kRankTreeRoot = QStringLiteral("직급");
inline const QString kRankGridTitle = QStringLiteral("직급별 목록");
inline const QString kRankGridDepartment = QStringLiteral("부서");
inline const QString kMenuAddDepartment = QStringLiteral("부서 추가(&A)");
inline const QString kMenuDelete = QStringLiteral("삭제(&D)");
inline const QString kMenuRename = QStringLiteral("이름 바꾸기(&R)");
inline const QString kMenuSortByRank = QStringLiteral("직급 순서대로 정렬(&S)");
inline const QString kMenuMoveToTop = QStringLiteral("우선 순위를 가장 위로(&T)");
inline const QString kMenuMoveUp = QStringLiteral("우선 순위를 위로(&P)");
inline const QString kMenuMoveDown = QStringLiteral("우선 순위를 아래로(&N)");
inline const QString kMenuMoveToBottom = QStringLiteral("우선 순위를 가장 아래로(&B)");
inline const QString kMenuRankSubmenu = QStringLiteral("직급(&K)");
inline const QString kMenuRegistrationMail = QStringLiteral("등록메일(설치파일) 전송(&M)");
inline const QString kMenuAddMember = QStringLiteral("사원 추가(&A)");
inline const QString kMenuDeleteMember = QStringLiteral("사원 삭제(&D)");
inline const QString kMenuAddRank = QStringLiteral("직급 추가(&A)");
inline const QString kMenuRenameRank = QStringLiteral("이름 바꾸기(&M)");
inline const QString kMoveUpTip = QStringLiteral("한단계 위로");
inline const QString kMoveUpPrompt = QStringLiteral("우선순위를 한단계 올립니다.");
inline const QString kMoveDownTip = QStringLiteral("한단계 아래로");
inline const QString kMoveDownPrompt = QStringLiteral("우선 순위를 한단계 내립니다.");
inline const QString kSearchPlaceholder = QStringLiteral("아이디, 이름, 이메일, 전화번호, 부서로 찾기");
inline const QString kOnlyWithoutDepartment = QStringLiteral("소속 없는 사용자만");

// The main window
inline const QString kAppTitle = QStringLiteral("SableManager");
inline const QString kProductName = QStringLiteral("Sable Manager 4.0");
inline const QString kMenuFile = QStringLiteral("파일(&F)");
inline const QString kMenuEdit = QStringLiteral("편집(&E)");
inline const QString kMenuView = QStringLiteral("보기(&V)");
inline const QString kMenuServer = QStringLiteral("서버관리(&M)");
inline const QString kMenuServerSettings = QStringLiteral("서버설정(&S)");
inline const QString kMenuHelp = QStringLiteral("도움말(&H)");
inline const QString kCmdRegistrationMail = QStringLiteral("등록메일(설치파일) 전송(&M)");
inline const QString kCmdPreviousVersionData = QStringLiteral("이전 버젼 데이터 가져오기");
inline const QString kCmdImportUsers = QStringLiteral("외부 테이터 가져오기(&O)");
inline const QString kCmdSave = QStringLiteral("저장(&S)");
inline const QString kCmdExit = QStringLiteral("종료(&X)");
inline const QString kCmdAddDepartment = QStringLiteral("부서 추가(&A)");
inline const QString kCmdRenameDepartment = QStringLiteral("부서 수정(&M)");
inline const QString kCmdDeleteDepartment = QStringLiteral("부서 삭제(&D)");
inline const QString kCmdAddUser = QStringLiteral("사용자 추가(&U)");
inline const QString kCmdDeleteUser = QStringLiteral("사용자 삭제(&R)");
inline const QString kCmdAddRank = QStringLiteral("직급 추가(&A)");
inline const QString kCmdRenameRank = QStringLiteral("직급 수정(&M)");
inline const QString kCmdDeleteRank = QStringLiteral("직급 삭제(&D)");
inline const QString kCmdDeletePermission = QStringLiteral("권한 삭제(&D)");
inline const QString kCmdToolBar = QStringLiteral("도구 모음(&T)");
inline const QString kCmdStatusBar = QStringLiteral("상태 표시줄(&S)");
inline const QString kCmdBalloonHelp = QStringLiteral("풍선 도움말(&B)");
inline const QString kCmdStartServer = QStringLiteral("서버 시작(&S)");
inline const QString kCmdStopServer = QStringLiteral("서버 정지(&T)");
inline const QString kCmdDatabaseSettings = QStringLiteral("데이터베이스 설정/변경");
inline const QString kCmdFileServers = QStringLiteral("파일 서버 관리(&F)");
inline const QString kCmdLogo = QStringLiteral("로고 설정 (&C)");
inline const QString kCmdHomePage = QStringLiteral("홈페이지설정 (&H)");
inline const QString kCmdHelp = QStringLiteral("도움말(&H)");
inline const QString kCmdProductHome = QStringLiteral("홈페이지(&W)");
inline const QString kCmdQuickGuide = QStringLiteral("Quick Guide(&Q)");
inline const QString kCmdAbout = QStringLiteral("SableManager 정보(&A)");
inline const QString kCmdUndo = QStringLiteral("실행 취소(&U)");
inline const QString kCmdRedo = QStringLiteral("다시 실행(&R)");
inline const QString kCmdUndoStep = QStringLiteral("실행 취소: %1");
inline const QString kCmdRedoStep = QStringLiteral("다시 실행: %1");
inline const QString kToolUp = QStringLiteral("위로");
inline const QString kToolDown = QStringLiteral("아래로");
// Tool tips and status-bar prompts of the console's commands
inline const QString kTipRegistrationMail = QStringLiteral("등록메일 전송");
inline const QString kPromptRegistrationMail
    = QStringLiteral("사용자에게 서버 주소, 아이디와 비밀번호를 메일로 보냅니다.");
inline const QString kTipPreviousVersionData = QStringLiteral("이전 버전 데이터 가져오기");
inline const QString kPromptPreviousVersionData
    = QStringLiteral("이전 버전의 데이터를 옮기는 업그레이드 프로그램을 내려받아 실행합니다.");
inline const QString kTipImportUsers = QStringLiteral("외부 데이터 가져오기 (Ctrl+O)");
inline const QString kPromptImportUsers = QStringLiteral("CSV 파일이나 탭으로 구분된 파일에서 사용자를 가져옵니다.");
inline const QString kTipExportUsers = QStringLiteral("사용자 목록 내보내기");
inline const QString kPromptExportUsers
    = QStringLiteral("사용자 목록을 가져오기로 다시 읽을 수 있는 CSV 파일로 씁니다.");
inline const QString kTipSave = QStringLiteral("저장 (Ctrl+S)");
inline const QString kPromptSave = QStringLiteral("조직도, 직급과 폴더 권한을 데이터베이스에 저장합니다.");
inline const QString kTipExit = QStringLiteral("종료");
inline const QString kPromptExit = QStringLiteral("Sable Manager를 닫습니다. 서버는 계속 실행됩니다.");
inline const QString kTipUndo = QStringLiteral("실행 취소 (Ctrl+Z)");
inline const QString kPromptUndo = QStringLiteral("마지막 편집을 되돌립니다.");
inline const QString kTipRedo = QStringLiteral("다시 실행 (Ctrl+Y)");
inline const QString kPromptRedo = QStringLiteral("되돌린 편집을 다시 합니다.");
inline const QString kTipAddDepartment = QStringLiteral("부서 추가");
inline const QString kPromptAddDepartment = QStringLiteral("선택한 부서 아래에 새 부서를 만듭니다.");
inline const QString kTipRenameDepartment = QStringLiteral("부서 수정");
inline const QString kPromptRenameDepartment = QStringLiteral("선택한 부서의 이름을 바꿉니다.");
inline const QString kTipDeleteDepartment = QStringLiteral("부서 삭제");
inline const QString kPromptDeleteDepartment = QStringLiteral("선택한 부서나 부서원을 조직도에서 뺍니다.");
inline const QString kTipAddUser = QStringLiteral("사용자 추가");
inline const QString kPromptAddUser = QStringLiteral("사용자 목록에 새 사용자를 만듭니다.");
inline const QString kTipDeleteUser = QStringLiteral("사용자 삭제");
inline const QString kPromptDeleteUser = QStringLiteral("선택한 사용자를 삭제합니다.");
inline const QString kTipAddRank = QStringLiteral("직급 추가");
inline const QString kPromptAddRank = QStringLiteral("직급 목록의 끝에 새 직급을 만듭니다.");
inline const QString kTipRenameRank = QStringLiteral("직급 수정");
inline const QString kPromptRenameRank = QStringLiteral("선택한 직급의 이름을 바꿉니다.");
inline const QString kTipDeleteRank = QStringLiteral("직급 삭제");
inline const QString kPromptDeleteRank = QStringLiteral("선택한 직급을 삭제합니다.");
inline const QString kTipDeletePermission = QStringLiteral("권한 삭제");
inline const QString kPromptDeletePermission = QStringLiteral("선택한 폴더 권한을 삭제합니다.");
inline const QString kTipEditFolders = QStringLiteral("폴더 편집");
inline const QString kPromptEditFolders = QStringLiteral("SableBox의 기본 폴더를 파일 관리자로 엽니다.");
inline const QString kTipToolBar = QStringLiteral("도구 모음");
inline const QString kPromptToolBar = QStringLiteral("도구 모음을 보이거나 숨깁니다.");
inline const QString kTipStatusBar = QStringLiteral("상태 표시줄");
inline const QString kPromptStatusBar = QStringLiteral("상태 표시줄을 보이거나 숨깁니다.");
inline const QString kTipBalloonHelp = QStringLiteral("풍선 도움말");
inline const QString kPromptBalloonHelp = QStringLiteral("편집 화면의 풍선 도움말을 켜거나 끕니다.");
inline const QString kTipStartServer = QStringLiteral("서버 시작");
inline const QString kPromptStartServer = QStringLiteral("서버의 서비스를 차례대로 시작합니다.");
inline const QString kTipStopServer = QStringLiteral("서버 정지");
inline const QString kPromptStopServer = QStringLiteral("메신저 서버의 서비스를 정지합니다.");
inline const QString kTipDatabaseSettings = QStringLiteral("데이터베이스 설정/변경");
inline const QString kPromptDatabaseSettings = QStringLiteral("서버가 사용하는 데이터베이스를 바꿉니다.");
inline const QString kTipFileServers = QStringLiteral("파일 서버 관리");
inline const QString kPromptFileServers = QStringLiteral("파일 세션 서버 목록을 편집합니다.");
inline const QString kTipLogo = QStringLiteral("로고 설정");
inline const QString kPromptLogo = QStringLiteral("클라이언트에 보일 로고와 제목을 정합니다.");
inline const QString kTipHomePage = QStringLiteral("홈페이지 설정");
inline const QString kPromptHomePage = QStringLiteral("클라이언트에 보일 홈페이지 링크를 정합니다.");
inline const QString kTipHelp = QStringLiteral("도움말 (F1)");
inline const QString kPromptHelp = QStringLiteral("도움말을 엽니다.");
inline const QString kTipProductHome = QStringLiteral("홈페이지");
inline const QString kPromptProductHome = QStringLiteral("제품 홈페이지를 웹 브라우저로 엽니다.");
inline const QString kTipQuickGuide = QStringLiteral("Quick Guide");
inline const QString kPromptQuickGuide = QStringLiteral("빠른 사용 안내를 엽니다.");
inline const QString kTipAbout = QStringLiteral("프로그램 정보");
inline const QString kPromptAbout = QStringLiteral("프로그램 이름과 버전을 보여 줍니다.");
inline const QString kNavChartGroup = QStringLiteral("조직도 관리");
inline const QString kNavFileBoxGroup = QStringLiteral("세이블박스 관리");
inline const QString kNavChartEditor = QStringLiteral("조직도 편집");
inline const QString kNavRankEditor = QStringLiteral("직급도 편집");
inline const QString kNavFolderPermissions = QStringLiteral("폴더별 관리");
inline const QString kNavUserPermissions = QStringLiteral("사용자별 관리");
inline const QString kNavFileBoxSettings = QStringLiteral("SableBox 설정");
inline const QString kCloseQuestion = QStringLiteral("편집 내용을 저장하시겠습니까?");
inline const QString kDownloadUpgradeQuestion
    = QStringLiteral("DB업그레이드 프로그램을 다운로드 합니다.\n계속 하시겠습니까?");
inline const QString kDownloading = QStringLiteral("업그레이드 프로그램을 받고 있습니다...");
inline const QString kDownloadFailed = QStringLiteral("업그레이드 프로그램을 받지 못했습니다.\n%1");
inline const QString kStopLoading = QStringLiteral("중지");
inline const QString kSaving = QStringLiteral("조직도를 저장하고 있습니다...");
inline const QString kSaveSummary = QStringLiteral("마지막으로 읽거나 저장한 뒤의 변경 내용:\n"
                                                   "부서: 추가 %1, 변경 %2, 삭제 %3\n"
                                                   "사용자: 추가 %4, 변경 %5, 삭제 %6\n"
                                                   "소속: 추가 %7, 변경 %8, 삭제 %9");
inline const QString kSaveSummaryRanks = QStringLiteral("직급: 추가 %1, 이름 변경 %2, 순서 변경 %3, 삭제 %4");
inline const QString kSaveSummaryPermissions = QStringLiteral("폴더 권한: 부여 %1, 변경 %2, 삭제 %3");
inline const QString kSaveSummaryCheck
    = QStringLiteral("저장하기 전에 데이터베이스를 다시 읽어 비교하고, 그 사이 다른 곳에서 저장한 내용이 있으면 "
                     "합칠지 묻습니다.");

// The start page
inline const QString kStartServices = QStringLiteral("서버 서비스");
inline const QString kStartDatabase = QStringLiteral("데이터베이스");
inline const QString kStartChart = QStringLiteral("조직도");
inline const QString kStartDepartments = QStringLiteral("부서");
inline const QString kStartUsers = QStringLiteral("사용자");
inline const QString kStartUsersWithoutDepartment = QStringLiteral("소속 없는 사용자");
inline const QString kStartRanks = QStringLiteral("직급");
inline const QString kStartLinks = QStringLiteral("바로 가기");
inline const QString kStartHelpLink = QStringLiteral("온라인 도움말");
inline const QString kStartHomeLink = QStringLiteral("제품 홈페이지");
inline const QString kServiceRunning = QStringLiteral("실행 중");
inline const QString kServiceStartPending = QStringLiteral("시작하는 중");
inline const QString kServiceStopPending = QStringLiteral("정지하는 중");
inline const QString kServiceStopped = QStringLiteral("중지됨");
inline const QString kServiceMissing = QStringLiteral("설치되지 않음");
inline const QString kServiceUnknown = QStringLiteral("확인할 수 없음");

// Names of the edits in the undo and redo commands
inline const QString kStepAddDepartment = QStringLiteral("부서 추가");
inline const QString kStepRenameDepartment = QStringLiteral("부서 이름 바꾸기: %1");
inline const QString kStepDeleteDepartment = QStringLiteral("부서 삭제: %1");
inline const QString kStepRemovePlacement = QStringLiteral("부서에서 빼기: %1");
inline const QString kStepMove = QStringLiteral("순서 바꾸기: %1");
inline const QString kStepSortByRank = QStringLiteral("직급 순서대로 정렬: %1");
inline const QString kStepSetRank = QStringLiteral("직급 지정: %1");
inline const QString kStepAddUser = QStringLiteral("사용자 추가: %1");
inline const QString kStepEditUser = QStringLiteral("사용자 정보 수정: %1");
inline const QString kStepDeleteUsers = QStringLiteral("사용자 삭제 (%1명)");
inline const QString kStepAddToDepartment = QStringLiteral("부서에 사용자 추가: %1");
inline const QString kStepAddRank = QStringLiteral("직급 추가");
inline const QString kStepRenameRank = QStringLiteral("직급 이름 바꾸기: %1");
inline const QString kStepDeleteRank = QStringLiteral("직급 삭제: %1");
inline const QString kStepMoveRank = QStringLiteral("직급 순서 바꾸기: %1");

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

// Registration mail
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

// Bulk import and export of users
inline const QString kImportDepartmentField = QStringLiteral("부서");
inline const QString kImportRankField = QStringLiteral("직급");
inline const QString kImportCannotOpen = QStringLiteral("파일을 열 수 없습니다: %1 (%2)");
inline const QString kImportUndecodable = QStringLiteral("%1번째 줄을 %2(으)로 읽을 수 없습니다.");
inline const QString kImportUnclosedQuote = QStringLiteral("%1번째 줄: 따옴표가 닫히지 않았습니다.");
inline const QString kImportTextAfterQuote
    = QStringLiteral("%1번째 줄: 닫는 따옴표 뒤에 구분 문자가 아닌 글자가 있습니다.");
inline const QString kImportNoRows = QStringLiteral("가져올 사용자가 없습니다.");
inline const QString kImportColumnNumber = QStringLiteral("%1열");
inline const QString kImportEnterId = QStringLiteral("아이디를 입력하세요.");
inline const QString kImportEnterName = QStringLiteral("이름을 입력하세요.");
inline const QString kImportIdTwice = QStringLiteral("같은 아이디가 %1번째 줄에도 있습니다.");
inline const QString kImportEmailWithoutAt = QStringLiteral("이메일 주소에 @가 없습니다.");
inline const QString kImportBadChoice = QStringLiteral("%1 또는 %2만 쓸 수 있습니다.");
inline const QString kImportExtraCells = QStringLiteral("칸이 %1개로 머리글의 %2개보다 많습니다.");
inline const QString kImportRankCount
    = QStringLiteral("직급은 하나이거나 부서마다 하나여야 합니다. (부서 %1개, 직급 %2개)");
inline const QString kImportFateNew = QStringLiteral("추가");
inline const QString kImportFateUpdate = QStringLiteral("수정");
inline const QString kImportFateUnchanged = QStringLiteral("변경 없음");
inline const QString kImportFateRefused = QStringLiteral("거부");
inline const QString kStepImportUsers = QStringLiteral("사용자 가져오기 (추가 %1명, 수정 %2명)");
inline const QString kExportCannotWrite = QStringLiteral("파일을 저장할 수 없습니다: %1 (%2)");
inline const QString kImportWizardTitle = QStringLiteral("사용자 가져오기");
inline const QString kImportFilePageTitle = QStringLiteral("가져올 파일");
inline const QString kImportFilePageText
    = QStringLiteral("사용자 목록이 담긴 CSV 파일(쉼표 또는 탭으로 구분된 텍스트)을 고르세요.");
inline const QString kImportFileLabel = QStringLiteral("파일(&F):");
inline const QString kImportBrowse = QStringLiteral("찾아보기(&B)...");
inline const QString kImportFileDialogTitle = QStringLiteral("가져올 파일 선택");
inline const QString kImportFileFilter = QStringLiteral("CSV 파일 (*.csv *.tsv *.txt);;모든 파일 (*)");
inline const QString kImportEncodingLabel = QStringLiteral("인코딩(&E):");
inline const QString kImportDelimiterLabel = QStringLiteral("구분 문자(&D):");
inline const QString kImportDetected = QStringLiteral("자동 감지 (%1)");
inline const QString kImportEncodingCp949 = QStringLiteral("한국어 Windows (CP949)");
inline const QString kImportComma = QStringLiteral("쉼표");
inline const QString kImportTab = QStringLiteral("탭");
inline const QString kImportHeaderCheck = QStringLiteral("첫 줄은 열 이름입니다(&H)");
inline const QString kImportFileRead = QStringLiteral("열 %1개, 사용자 %2줄을 읽었습니다.");
inline const QString kImportMappingPageTitle = QStringLiteral("열 연결");
inline const QString kImportMappingPageText
    = QStringLiteral("파일의 열을 사용자 정보에 연결하세요. 아이디 열은 꼭 연결해야 합니다.");
inline const QString kImportFieldColumn = QStringLiteral("항목");
inline const QString kImportFileColumn = QStringLiteral("파일의 열");
inline const QString kImportSampleColumn = QStringLiteral("첫 줄의 값");
inline const QString kImportNotImported = QStringLiteral("(가져오지 않음)");
inline const QString kImportAddOnly = QStringLiteral("새 사용자만 추가(&A)");
inline const QString kImportAddAndUpdate = QStringLiteral("새 사용자 추가, 아이디가 같은 사용자는 수정(&U)");
inline const QString kImportPreviewPageTitle = QStringLiteral("미리 보기");
inline const QString kImportPreviewPageText = QStringLiteral(
    "가져오기를 누르면 아래 내용이 조직도에 반영됩니다. 한 번의 실행 취소로 되돌릴 수 있으며, 저장하기 전에는 "
    "데이터베이스에 기록되지 않습니다.");
inline const QString kImportSummary = QStringLiteral("추가 %1명, 수정 %2명, 변경 없음 %3명, 거부 %4명");
inline const QString kImportCreates = QStringLiteral("새 부서 %1개, 새 직급 %2개가 만들어집니다.");
inline const QString kImportRefusedOnly = QStringLiteral("거부된 줄만 보기(&R)");
inline const QString kImportLineColumn = QStringLiteral("줄");
inline const QString kImportFateColumn = QStringLiteral("결과");
inline const QString kImportReasonColumn = QStringLiteral("사유");
inline const QString kImportFinishButton = QStringLiteral("가져오기(&I)");
inline const QString kImportBackButton = QStringLiteral("< 뒤로(&B)");
inline const QString kImportNextButton = QStringLiteral("다음(&N) >");
inline const QString kImportAndMore = QStringLiteral("%1 외 %2개");
inline const QString kImportNothingToApply = QStringLiteral("추가하거나 수정할 사용자가 없습니다.");
inline const QString kCmdExportUsers = QStringLiteral("사용자 목록 내보내기(&E)...");
inline const QString kExportDialogTitle = QStringLiteral("사용자 목록 내보내기");
inline const QString kExportFileFilter = QStringLiteral("CSV 파일 (*.csv)");

// File box: the server settings dialog
inline const QString kFileBoxSettingsTitle = QStringLiteral("SableBox 설정");
inline const QString kFileBoxSettingsHeading = QStringLiteral("SableBox 서버 설정");
inline const QString kFileBoxSettingsIntro = QStringLiteral(" SableBox 서버의 설정값을 변경합니다.");
inline const QString kFileBoxHomeGroup = QStringLiteral("기본 폴더 설정");
inline const QString kFileBoxBrowse = QStringLiteral("찾아보기(&R)");
inline const QString kFileBoxBrowseTip = QStringLiteral("SableBox의 기본 폴더를 설정합니다.\n여기서 설정하신 폴더가 "
                                                        "사용자 컴퓨터의 SableBox에 보이게 됩니다.\n설정하시려면 "
                                                        "이 단추를 누르세요.");
inline const QString kFileBoxBrowseTitle = QStringLiteral("SableBox 기본 폴더 선택");
inline const QString kFileBoxPassiveGroup = QStringLiteral("Passive mode 설정");
inline const QString kFileBoxPorts = QStringLiteral("포트번호:");
inline const QString kFileBoxPortsTo = QStringLiteral("~");
inline const QString kFileBoxAddress = QStringLiteral("사용할 IP 주소:");
inline const QString kFileBoxBadPorts = QStringLiteral("포트 정보를 잘못 입력하셨습니다. 다시 입력해 주세요.");

// File box: the permission views
inline const QString kCmdEditFolders = QStringLiteral("폴더 편집(&E)");
inline const QString kFolderTreeTitle = QStringLiteral("폴더");
inline const QString kMissingFoldersTitle = QStringLiteral("디스크에 없는 폴더");
inline const QString kMissingFolderTip
    = QStringLiteral("기본 폴더 아래에 없는 폴더입니다.\n폴더 편집에서 다시 만들거나 권한을 삭제하세요.");
inline const QString kFolderPermissionsHeading = QStringLiteral("권한 목록");
inline const QString kGranteePermissionsHeading = QStringLiteral("폴더 권한");
inline const QString kGranteeColumn = QStringLiteral("이름");
inline const QString kGranteeKindColumn = QStringLiteral("구분");
inline const QString kLevelColumn = QStringLiteral("권한");
inline const QString kFolderColumn = QStringLiteral("폴더");
inline const QString kSourceColumn = QStringLiteral("받은 곳");
inline const QString kGranteeDepartment = QStringLiteral("부서");
inline const QString kGranteeUser = QStringLiteral("사용자");
inline const QString kGranteeUserName = QStringLiteral("%1 (%2)");
inline const QString kUnknownGrantee = QStringLiteral("(알 수 없음: %1)");
inline const QString kSourceOwn = QStringLiteral("직접");
inline const QString kSourceInherited = QStringLiteral("%1 (부서)");
inline const QString kInheritedTip
    = QStringLiteral("[%1] 부서에 준 권한입니다.\n부서의 권한은 부서를 선택해서 바꾸세요.");
inline const QString kAddPermissionTo = QStringLiteral("[%1]에 권한 추가(&A)");
inline const QString kMenuDeletePermission = QStringLiteral("권한 삭제(&D)");
inline const QString kOpenFolderFailed = QStringLiteral("폴더를 열지 못했습니다.\n%1");
inline const QString kStepSetPermission = QStringLiteral("권한 지정: %1");
inline const QString kStepAddPermission = QStringLiteral("권한 추가: %1");
inline const QString kStepDeletePermission = QStringLiteral("권한 삭제 (%1개)");

// Saves that meet: the tables and fields as the comparison and the merge name them
inline const QString kTableGroups = QStringLiteral("부서");
inline const QString kTableMembers = QStringLiteral("사용자");
inline const QString kTableRelations = QStringLiteral("소속");
inline const QString kTableRanks = QStringLiteral("직급");
inline const QString kTableFolders = QStringLiteral("폴더");
inline const QString kTableGroupAuthorities = QStringLiteral("부서 권한");
inline const QString kTableUserAuthorities = QStringLiteral("사용자 권한");
inline const QString kTableDirectoryLinks = QStringLiteral("디렉터리 연결");
inline const QString kFieldEntry = QStringLiteral("항목 ID");
inline const QString kFieldDn = QStringLiteral("DN");
inline const QString kFieldName = QStringLiteral("이름");
inline const QString kFieldParent = QStringLiteral("상위 부서");
inline const QString kFieldOrder = QStringLiteral("순서");
inline const QString kFieldRank = QStringLiteral("직급");
inline const QString kFieldPath = QStringLiteral("경로");
inline const QString kFieldLevel = QStringLiteral("권한");
inline const QString kMemberName = QStringLiteral("%1 (%2)");
inline const QString kRelationName = QStringLiteral("%1 - %2");
inline const QString kAuthorityName = QStringLiteral("%1: %2");
inline const QString kUnknownRow = QStringLiteral("#%1");
inline const QString kTopLevel = QStringLiteral("(최상위)");
inline const QString kJournalAdded = QStringLiteral("추가");
inline const QString kProblemsHeading
    = QStringLiteral("조직도를 읽었지만 표에 있는 그대로 둘 수 없는 것이 %1개 있습니다.");
inline const QString kProblemUnknownDepartment
    = QStringLiteral("- 없는 부서의 소속 %1개 (사용자/부서: %2): 보이지 않으며, 다음 저장에서 지워집니다.");
inline const QString kProblemUnknownUser
    = QStringLiteral("- 없는 사용자의 소속 %1개 (사용자/부서: %2): 보이지 않으며, 다음 저장에서 지워집니다.");
inline const QString kProblemNoParent
    = QStringLiteral("- 상위 부서가 없는 부서 %1개 (%2): 최상위에 두었고, 다음 저장에서 최상위 부서로 저장됩니다.");
inline const QString kProblemDuplicateDepartment = QStringLiteral(
    "- 번호가 겹치는 부서 %1개 (%2): 둘 다 보이며 다음 저장에서도 그대로 쓰입니다. 하나를 지우고 다시 만드세요.");
inline const QString kProblemDuplicateUser = QStringLiteral(
    "- 번호가 겹치는 사용자 %1명 (%2): 둘 다 보이며 다음 저장에서도 그대로 쓰입니다. 하나를 지우고 다시 만드세요.");
inline const QString kProblemDuplicateLogin
    = QStringLiteral("- 아이디가 겹치는 사용자 %1명 (%2): 한쪽 아이디를 바꾸기 전에는 저장할 수 없습니다.");
inline const QString kStepMerge = QStringLiteral("다른 곳의 저장과 합치기");
// When a save happened, as restore points and the change journal show it (local time).
inline const QString kSaveTimeFormat = QStringLiteral("yyyy-MM-dd HH:mm:ss");
inline const QString kStepRestore = QStringLiteral("복원 지점 열기: %1");

// Restore points and the change journal in the console
inline const QString kCmdRestorePoints = QStringLiteral("복원 지점(&R)...");
inline const QString kTipRestorePoints = QStringLiteral("복원 지점");
inline const QString kPromptRestorePoints
    = QStringLiteral("저장할 때마다 남긴 복원 지점을 보고, 골라서 그때의 조직도를 편집 화면에 엽니다.");
inline const QString kRestoreTitle = QStringLiteral("복원 지점");
inline const QString kRestoreIntro = QStringLiteral(
    "저장할 때마다 저장하기 전의 조직도를 복원 지점으로 남깁니다 (%1). 하나를 골라 열면 그 조직도가 편집 화면에 "
    "열리고, 저장해야 데이터베이스에 반영됩니다.");
inline const QString kRestoreWhenColumn = QStringLiteral("저장한 때");
inline const QString kRestoreWhoColumn = QStringLiteral("저장한 사람");
inline const QString kRestoreProgramColumn = QStringLiteral("프로그램");
inline const QString kRestoreChangesColumn = QStringLiteral("그 저장에서 바뀐 것");
inline const QString kRestoreOpen = QStringLiteral("열기(&O)");
inline const QString kRestoreReading = QStringLiteral("복원 지점을 읽는 중입니다...");
inline const QString kRestoreOpening = QStringLiteral("%1을(를) 읽는 중입니다...");
inline const QString kRestoreNone = QStringLiteral("복원 지점이 없습니다. 조직도를 한 번 저장하면 생깁니다.");
inline const QString kRestoreCount = QStringLiteral("복원 지점 %1개");
inline const QString kRestoreQuestion = QStringLiteral(
    "%1에 저장하기 전의 조직도를 편집 화면에 엽니다.\n저장하지 않은 변경은 모두 이 조직도로 바뀝니다 (실행 취소로 "
    "되돌릴 수 있습니다).\n계속하시겠습니까?");
inline const QString kRestoreUnreadable = QStringLiteral("복원 지점을 열 수 없습니다.\n%1");
inline const QString kRestoreNewerUnreadable = QStringLiteral(
    "이보다 나중의 복원 지점을 읽을 수 없어 열지 않았습니다.\n%1\n그 뒤의 저장에서 지운 사용자의 대화 상대 목록과 "
    "쪽지가 그 파일에 있을 수 있습니다. 그 파일을 %2 밖으로 옮기면 그것 없이 복원합니다.");
inline const QString kRestoreOpened
    = QStringLiteral("복원 지점의 조직도를 열었습니다. 바뀐 것을 확인한 뒤 저장하세요.\n%1");
inline const QString kCmdJournal = QStringLiteral("변경 기록(&J)");
inline const QString kTipJournal = QStringLiteral("변경 기록");
inline const QString kPromptJournal = QStringLiteral("저장할 때마다 무엇이 바뀌었는지 봅니다.");
inline const QString kCmdRefreshJournal = QStringLiteral("변경 기록 새로 고침(&R)");
inline const QString kTipRefreshJournal = QStringLiteral("변경 기록 새로 고침 (F5)");
inline const QString kPromptRefreshJournal = QStringLiteral("변경 기록을 데이터베이스에서 다시 읽습니다.");
inline const QString kNavJournal = QStringLiteral("변경 기록");
inline const QString kJournalFrom = QStringLiteral("기간(&P)");
inline const QString kJournalTo = QStringLiteral("~");
inline const QString kJournalUser = QStringLiteral("관리자(&A)");
inline const QString kJournalDepartment = QStringLiteral("부서(&D)");
inline const QString kJournalLogin = QStringLiteral("아이디(&I)");
inline const QString kJournalKey = QStringLiteral("번호(&N)");
inline const QString kJournalWhenColumn = QStringLiteral("저장한 때");
inline const QString kJournalWhoColumn = QStringLiteral("저장한 사람");
inline const QString kJournalProgramColumn = QStringLiteral("프로그램");
inline const QString kJournalSummaryColumn = QStringLiteral("바뀐 것");
inline const QString kJournalTableColumn = QStringLiteral("구분");
inline const QString kJournalActionColumn = QStringLiteral("변경");
inline const QString kJournalKeyColumn = QStringLiteral("번호");
inline const QString kJournalNameColumn = QStringLiteral("이름");
inline const QString kJournalLoginColumn = QStringLiteral("아이디");
inline const QString kJournalDepartmentColumn = QStringLiteral("부서");
inline const QString kJournalFieldsColumn = QStringLiteral("바뀐 항목");
inline const QString kJournalSummaryPart = QStringLiteral("%1 %2 %3");
inline const QString kJournalReading = QStringLiteral("변경 기록을 읽는 중입니다...");
inline const QString kJournalCount = QStringLiteral("저장 %1번, 바뀐 행 %2개");
inline const QString kJournalCut
    = QStringLiteral("저장 %1번, 바뀐 행 %2개 (최근 %2개까지만 보입니다. 조건을 좁히세요)");
inline const QString kJournalFailed = QStringLiteral("변경 기록을 읽을 수 없습니다: %1");
inline const QString kChangeTableColumn = QStringLiteral("구분");
inline const QString kChangeNameColumn = QStringLiteral("이름");
inline const QString kChangeActionColumn = QStringLiteral("변경");
inline const QString kChangeFieldsColumn = QStringLiteral("항목");
inline const QString kConflictMineColumn = QStringLiteral("이 콘솔");
inline const QString kConflictTheirsColumn = QStringLiteral("데이터베이스");
inline const QString kConflictKeepColumn = QStringLiteral("남길 쪽");
inline const QString kConflictKeepMine = QStringLiteral("이 콘솔 것");
inline const QString kConflictKeepTheirs = QStringLiteral("데이터베이스 것");
inline const QString kConflictBothChanged = QStringLiteral("양쪽에서 바꿈");
inline const QString kConflictRemovedThere = QStringLiteral("여기서 바꿨으나 다른 곳에서 삭제함");
inline const QString kConflictRemovedHere = QStringLiteral("여기서 삭제했으나 다른 곳에서 바꿈");
inline const QString kConflictUsedHere = QStringLiteral("다른 곳에서 삭제했으나 여기서 씀");
inline const QString kConflictUsedThere = QStringLiteral("여기서 삭제했으나 다른 곳에서 씀");
inline const QString kConflictOrder = QStringLiteral("양쪽에서 순서를 바꿈");
inline const QString kConflictTitle = QStringLiteral("다른 곳에서 저장한 내용");
inline const QString kConflictHeading = QStringLiteral("이 콘솔이 조직도를 읽은 뒤 다른 곳에서 저장했습니다.");
inline const QString kConflictIntro = QStringLiteral(
    "그대로 저장하면 다른 콘솔이나 프로그램, 메신저 서버가 저장한 내용을 덮어쓰게 되므로 아무것도 저장하지 "
    "않았습니다.\n합치기를 누르면 양쪽의 변경을 모두 살린 조직도를 편집 화면에 보여 줍니다. 확인한 뒤 다시 "
    "저장하세요. 합친 것은 실행 취소로 되돌릴 수 있습니다.");
inline const QString kConflictTab = QStringLiteral("양쪽에서 바꾼 항목 (%1)");
inline const QString kConflictTheirTab = QStringLiteral("다른 곳의 변경 (%1)");
inline const QString kConflictMineTab = QStringLiteral("이 콘솔의 변경 (%1)");
inline const QString kConflictDecide
    = QStringLiteral("항목마다 남길 쪽을 고르세요. 표시한 항목은 이 콘솔 것을 남깁니다.");
inline const QString kConflictAllMine = QStringLiteral("모두 이 콘솔 것(&M)");
inline const QString kConflictAllTheirs = QStringLiteral("모두 데이터베이스 것(&T)");
inline const QString kConflictMerge = QStringLiteral("합치기(&G)");
inline const QString kConflictReload = QStringLiteral("다시 읽기 - 내 변경 버림(&R)");
inline const QString kConflictReloadQuestion
    = QStringLiteral("이 콘솔에서 바꾼 %1건이 모두 사라지고 데이터베이스의 조직도를 다시 읽습니다.\n계속하시겠습니까?");
inline const QString kMergeDone
    = QStringLiteral("다른 곳에서 저장한 %1건과 합쳤습니다. 편집 화면에서 확인한 뒤 다시 저장하세요.");
inline const QString kMergeRenumbered = QStringLiteral("번호가 겹쳐 새 번호를 받은 항목: %1");
inline const QString kMergeDropped = QStringLiteral("삭제된 항목에 딸려 있어 빠진 항목: %1");
inline const QString kMergePasswordHidden = QStringLiteral("(비밀번호)");
inline const QString kMergeRemoved = QStringLiteral("삭제됨");
inline const QString kMergeStillUsed = QStringLiteral("계속 쓰임");
inline const QString kMergeOrderMine = QStringLiteral("이 콘솔의 순서");
inline const QString kMergeRankOrder = QStringLiteral("직급 순서");
inline const QString kMergeChildOrder = QStringLiteral("%1 아래 순서");
inline const QString kMergeOrderTheirs = QStringLiteral("데이터베이스의 순서");
inline const QString kRestorePointChangeLine = QStringLiteral("%1: 추가 %2, 변경 %3, 삭제 %4");
inline const QString kSaveRestoreFolderFailed = QStringLiteral(
    "복원 지점을 남길 폴더에 쓸 수 없어 저장하지 않았습니다.\n%1\n폴더의 권한과 디스크 공간을 확인하세요.");
inline const QString kSaveSettingsNotWritable
    = QStringLiteral("설정 파일에 쓸 수 없어 저장하지 않았습니다.\n%1\n파일이 잠겨 있거나, 그 자리에 폴더가 있거나, "
                     "디스크가 가득 찼는지 확인하세요.");
inline const QString kSaveVersionNotRaised
    = QStringLiteral("조직도는 저장했지만 설정 파일의 조직도 버전을 올리지 못했습니다.\n%1\n서버가 바뀐 조직도를 "
                     "다음 저장 때에야 알 수 있습니다.");
inline const QString kSaveJournalFailed = QStringLiteral("변경 기록 테이블을 만들 수 없어 저장하지 않았습니다.\n%1");
inline const QString kSaveDuplicateLoginId = QStringLiteral(
    "아이디 \"%1\"을(를) 쓰는 사용자가 둘 이상 있어 저장할 수 없습니다. 한 사용자의 아이디를 바꾸세요.");
inline const QString kJournalChanged = QStringLiteral("변경");
inline const QString kJournalRemoved = QStringLiteral("삭제");

// Keyboard, help, layout, service manager and start-up checks of the console
inline const QString kCmdUndoKeyed = QStringLiteral("실행 취소(&Z)");
inline const QString kCmdRedoKeyed = QStringLiteral("다시 실행(&Y)");
inline const QString kCmdUndoKeyedStep = QStringLiteral("실행 취소(&Z): %1");
inline const QString kCmdRedoKeyedStep = QStringLiteral("다시 실행(&Y): %1");
inline const QString kToolUndo = QStringLiteral("실행 취소");
inline const QString kToolRedo = QStringLiteral("다시 실행");
inline const QString kTipUndoStep = QStringLiteral("실행 취소: %1 (Ctrl+Z)");
inline const QString kTipRedoStep = QStringLiteral("다시 실행: %1 (Ctrl+Y)");
inline const QString kCmdServiceManager = QStringLiteral("서비스 관리자 설정(&V)...");
inline const QString kCmdFindUser = QStringLiteral("사용자 찾기(&F)");
inline const QString kTipFindUser = QStringLiteral("사용자 찾기 (Ctrl+F)");
inline const QString kPromptFindUser = QStringLiteral("사원 목록의 검색 상자로 갑니다.");
inline const QString kTipServiceManager = QStringLiteral("서비스 관리자 설정");
inline const QString kPromptServiceManager
    = QStringLiteral("서버의 서비스를 시작하고 정지할 서비스 관리자를 고르고 연결을 시험합니다.");
inline const QString kStopServerQuestion
    = QStringLiteral("서버를 정지하면 모든 사용자의 메신저 연결이 끊어집니다.\n\n서버를 정지하시겠습니까?");
inline const QString kServicesStartFailed = QStringLiteral("서버의 서비스를 모두 시작하지 못했습니다.");
inline const QString kServicesStopFailed = QStringLiteral("다음 서비스를 정지하지 못했습니다: %1");
inline const QString kOpenServiceManagerQuestion = QStringLiteral("서비스 관리자 설정을 여시겠습니까?");
inline const QString kServicesNotConfigured
    = QStringLiteral("서비스 관리자가 설정되어 있지 않아 서버의 서비스를 시작하거나 정지할 수 없습니다.");
inline const QString kServicesNoScm
    = QStringLiteral("이 컴퓨터에는 Windows 서비스 관리자가 없어 서버의 서비스를 시작하거나 정지할 수 없습니다.");
inline const QString kServicesUnknownManager
    = QStringLiteral("설정된 서비스 관리자를 알 수 없어 서버의 서비스를 시작하거나 정지할 수 없습니다.");
inline const QString kServicesSupervisorUnreachable = QStringLiteral(
    "supervisord에 연결하지 못해 서버의 서비스를 시작하거나 정지할 수 없습니다. 주소, 사용자 이름과 암호를 "
    "확인하세요.");
inline const QString kServicesScmUnreachable
    = QStringLiteral("Windows 서비스 관리자에 연결하지 못해 서버의 서비스를 시작하거나 정지할 수 없습니다.");
inline const QString kStartServiceManagerLink = QStringLiteral("서비스 관리자 설정(&V)...");
inline const QString kServiceManagerTitle = QStringLiteral("서비스 관리자 설정");
inline const QString kServiceManagerIntro = QStringLiteral("서버의 일곱 서비스를 시작하고 정지할 프로그램을 고르세요.");
inline const QString kServiceManagerNone = QStringLiteral("사용하지 않음(&N)");
inline const QString kServiceManagerSupervisor = QStringLiteral("supervisord(&S)");
inline const QString kServiceManagerScm = QStringLiteral("Windows 서비스 관리자(&W)");
inline const QString kServiceManagerUrl = QStringLiteral("주소(&A):");
inline const QString kServiceManagerUser = QStringLiteral("사용자 이름(&U):");
inline const QString kServiceManagerPassword = QStringLiteral("암호(&P):");
inline const QString kServiceManagerTest = QStringLiteral("연결 시험(&T)");
inline const QString kServiceManagerTesting = QStringLiteral("서비스 관리자에 연결하고 있습니다...");
inline const QString kServiceManagerTestPassed = QStringLiteral("연결에 성공했습니다.");
inline const QString kServiceManagerTestFailed = QStringLiteral("연결에 실패했습니다.");
inline const QString kServiceManagerKnows = QStringLiteral("서버의 서비스 %1개를 알고 있습니다: %2");
inline const QString kServiceManagerUnknown
    = QStringLiteral("모르는 서비스: %1 (서비스 관리자에 등록하거나 프로그램을 추가하세요)");
inline const QString kServiceManagerSaveFailed = QStringLiteral("서비스 관리자 설정을 저장하지 못했습니다.");
inline const QString kServiceManagerBadUrl = QStringLiteral("주소는 http://호스트:포트/RPC2 형식이어야 합니다.");
inline const QString kDatabaseReadFailed = QStringLiteral("데이터 베이스를 읽는 중 오류가 발생했습니다.");
inline const QString kDatabaseWriteFailed = QStringLiteral("데이터 베이스에 쓰는 중 오류가 발생했습니다.");
inline const QString kConnectionStringUnreadable = QStringLiteral(
    "레지스트리의 데이터베이스 연결 문자열(ConnectionString)을 읽을 수 없어 데이터베이스를 열지 않았습니다.");
inline const QString kConnectionStringTooLong = QStringLiteral(
    "연결 문자열이 %1바이트로 %2바이트를 넘습니다. 데이터베이스 설정에서 더 짧은 연결 정보를 지정하세요.");
inline const QString kConnectionStringDamaged = QStringLiteral(
    "ConnectionString 값이 들어 있는 설정이 손상되어 있습니다. 설정을 고치거나 데이터베이스 설정에서 다시 "
    "지정하세요.");
inline const QString kRegistryFileTooLarge = QStringLiteral(
    "레지스트리 설정 파일이 %1MiB보다 커서 읽지 않았습니다. 설정 파일이 아닌 파일이 그 자리에 있지 않은지 "
    "확인하세요.");
inline const QString kConnectionStringNotText
    = QStringLiteral("ConnectionString 값이 문자열이 아닙니다. 데이터베이스 설정에서 다시 지정하세요.");
inline const QString kDataSourceMissing = QStringLiteral("연결 문자열에 데이터베이스 파일(Data Source)이 없습니다.");
inline const QString kNotADatabase = QStringLiteral("데이터베이스 파일이 아닙니다: %1");
inline const QString kDatabaseOutsideHome = QStringLiteral(
    "서버가 사용하는 데이터베이스 파일이 서버 폴더 밖에 있습니다.\n\n데이터베이스: %1\n서버 폴더: %2\n\n다른 "
    "서버 폴더를 복사해 온 경우라면 데이터베이스 설정을 확인하세요.");
inline const QString kHelpMissing = QStringLiteral("사용 안내 파일을 찾을 수 없습니다.\n%1");
inline const QString kAddressOpenFailed = QStringLiteral("주소를 열 수 없습니다.\n%1");
inline const QString kStartGuideLink = QStringLiteral("사용 안내");
inline const QString kFileBoxPortOutOfRange
    = QStringLiteral("포트 번호는 %1부터 %2 사이의 숫자여야 합니다. 다시 입력해 주세요.");
inline const QString kMailServerAddressPrompt = QStringLiteral("☞메일에 보낼 서버 주소(&V)");
inline const QString kMailServerAddressEmpty = QStringLiteral("메일에 보낼 서버 주소를 입력하세요.");
inline const QString kStartupStopped = QStringLiteral("Sable Manager를 시작할 수 없습니다.");
inline const QString kDetailsButton = QStringLiteral("자세히(&D)...");
inline const QString kHideDetailsButton = QStringLiteral("자세히 닫기(&D)");

// Directory sync: the settings, the directory's failures, the entries it refuses, the leavers
inline const QString kDirNoUrl = QStringLiteral("디렉터리 서버 주소(URL)를 입력하세요.");
inline const QString kDirBadUrl
    = QStringLiteral("디렉터리 서버 주소는 ldap://서버[:포트] 또는 ldaps://서버[:포트] 형식이어야 합니다.");
inline const QString kDirTlsTwice = QStringLiteral("ldaps:// 주소에는 StartTLS를 함께 쓸 수 없습니다.");
inline const QString kDirNoPassword
    = QStringLiteral("바인드 DN의 비밀번호를 입력하세요. 익명으로 연결하려면 바인드 DN을 비워 두세요.");
inline const QString kDirNoBaseDn = QStringLiteral("기준 DN을 입력하세요.");
inline const QString kDirBadBaseDn = QStringLiteral("기준 DN의 형식이 올바르지 않습니다: %1");
inline const QString kDirNoLoginAttribute = QStringLiteral("아이디로 쓸 속성을 입력하세요.");
inline const QString kDirNoNameAttribute = QStringLiteral("이름으로 쓸 속성을 입력하세요.");
inline const QString kDirNoDepartmentAttribute = QStringLiteral("부서로 쓸 속성을 입력하세요.");
inline const QString kDirNoLeaverFilter = QStringLiteral("퇴사자를 찾을 필터를 입력하세요.");
inline const QString kDirBadThreshold = QStringLiteral("퇴사자 한도는 0에서 100 사이의 백분율이어야 합니다.");
inline const QString kDirBadPageSize = QStringLiteral("페이지 크기는 0에서 %1 사이여야 합니다.");
inline const QString kDirBadTimeout = QStringLiteral("제한 시간은 1초에서 %1초 사이여야 합니다.");
inline const QString kDirBadPasswordLength = QStringLiteral("비밀번호 길이는 %1에서 %2 사이여야 합니다.");
inline const QString kDirBadPasswordAlphabet
    = QStringLiteral("비밀번호 문자는 공백을 뺀 영문, 숫자, 기호로 두 가지 이상이어야 합니다.");
inline const QString kDirUnreachable
    = QStringLiteral("디렉터리 서버에 연결할 수 없습니다. 주소와 포트, 방화벽을 확인하세요.");
inline const QString kDirTlsFailed
    = QStringLiteral("디렉터리 서버와 보안 연결(TLS)을 맺지 못했습니다. 서버 인증서와 CA 인증서 파일을 확인하세요.");
inline const QString kDirBindRefused
    = QStringLiteral("디렉터리 서버가 로그인을 거부했습니다. 바인드 DN과 비밀번호를 확인하세요.");
inline const QString kDirNoSuchBase = QStringLiteral("기준 DN을 디렉터리에서 찾을 수 없습니다.");
inline const QString kDirBadFilter = QStringLiteral("필터가 올바르지 않습니다.");
inline const QString kDirTimedOut = QStringLiteral("디렉터리 서버가 제한 시간 안에 응답하지 않았습니다.");
inline const QString kDirLimitExceeded = QStringLiteral("디렉터리 서버가 검색 결과의 일부만 돌려주었습니다(크기 "
                                                        "제한). 전체를 읽지 못해 동기화하지 않습니다.");
inline const QString kDirStopped = QStringLiteral("디렉터리 읽기를 중지했습니다.");
inline const QString kDirOtherError = QStringLiteral("디렉터리 서버에서 오류가 발생했습니다.");
inline const QString kDirServerSaid = QStringLiteral("서버의 응답: %1");
inline const QString kDirLeaverFilterFailed = QStringLiteral("퇴사자 필터로 찾지 못했습니다. %1");
inline const QString kDirTestConnected = QStringLiteral("%1에 연결했습니다 (%2).");
inline const QString kDirTestAnonymous = QStringLiteral("익명");
inline const QString kDirTestVendor = QStringLiteral("서버: %1");
inline const QString kDirTestVersion = QStringLiteral("버전: %1");
inline const QString kDirTestHost = QStringLiteral("호스트: %1");
inline const QString kDirTestNamingContexts = QStringLiteral("이름 공간: %1");
inline const QString kDirTestLdapVersion = QStringLiteral("LDAP 버전: %1");
inline const QString kDirTestCount = QStringLiteral("필터에 맞는 항목: %1개");
inline const QString kDirNoLoginId = QStringLiteral("아이디 속성(%1)이 없는 항목입니다.");
inline const QString kDirNoUniqueId = QStringLiteral("고유 ID 속성(%1)이 없는 항목입니다.");
inline const QString kDirBadDn = QStringLiteral("DN을 해석할 수 없는 항목입니다.");
inline const QString kDirIdTwice = QStringLiteral("아이디가 같은 항목이 또 있습니다: %1");
inline const QString kDirUniqueIdTwice = QStringLiteral("고유 ID가 같은 항목이 또 있습니다: %1");
inline const QString kDirIdAmbiguous = QStringLiteral("조직도에 이 아이디의 사용자가 여럿 있습니다(대소문자만 다름).");
inline const QString kDirIdTaken = QStringLiteral("이 아이디의 사용자는 다른 항목(%1)에서 관리됩니다.");
inline const QString kDirIdUsedByOther = QStringLiteral("다른 사용자(%1)가 쓰는 아이디로 바꿀 수 없습니다.");
inline const QString kDirLeaverGone = QStringLiteral("디렉터리에서 사라짐");
inline const QString kDirLeaverDisabled = QStringLiteral("디렉터리에서 사용 중지됨");
inline const QString kDirTooManyLeavers
    = QStringLiteral("디렉터리가 관리하는 사용자 %1명 중 %2명이 퇴사 처리됩니다. 한도(%3%)를 넘어 동기화를 "
                     "멈췄습니다. 디렉터리와 필터를 확인하고, 의도한 것이면 한도를 무시하고 적용하세요.");
inline const QString kDirPreviewStale
    = QStringLiteral("미리 보기를 만든 뒤 조직도가 바뀌었습니다. 미리 보기를 다시 만드세요.");
inline const QString kDirNothingToApply = QStringLiteral("디렉터리와 조직도가 같습니다. 바꿀 것이 없습니다.");
inline const QString kStepDirectorySync = QStringLiteral("디렉터리 동기화 (추가 %1명, 수정 %2명, 퇴사 %3명)");

// Directory sync: the console's command and dialog
inline const QString kCmdDirectorySync = QStringLiteral("디렉터리 동기화(&D)...");
inline const QString kTipDirectorySync = QStringLiteral("디렉터리 동기화");
inline const QString kPromptDirectorySync
    = QStringLiteral("Active Directory나 LDAP 디렉터리의 사용자와 부서를 조직도에 맞춥니다.");
inline const QString kDirDialogTitle = QStringLiteral("디렉터리 동기화");
inline const QString kDirConnectionTab = QStringLiteral("연결");
inline const QString kDirMappingTab = QStringLiteral("항목 연결");
inline const QString kDirPreviewTab = QStringLiteral("미리 보기 및 적용");
inline const QString kDirUrlLabel = QStringLiteral("서버 주소(&U):");
inline const QString kDirStartTlsCheck = QStringLiteral("StartTLS로 암호화(&T)");
inline const QString kDirCaFileLabel = QStringLiteral("CA 인증서 파일:");
inline const QString kDirCaFilePlaceholder = QStringLiteral("(비우면 시스템의 인증서)");
inline const QString kDirBrowse = QStringLiteral("찾아보기...");
inline const QString kDirCaFileFilter = QStringLiteral("인증서 (*.pem *.crt *.cer);;모든 파일 (*)");
inline const QString kDirBindDnLabel = QStringLiteral("바인드 DN(&B):");
inline const QString kDirBindDnPlaceholder = QStringLiteral("(비우면 익명)");
inline const QString kDirPasswordLabel = QStringLiteral("비밀번호(&P):");
inline const QString kDirPasswordKept = QStringLiteral("(저장된 비밀번호 유지)");
inline const QString kDirBaseDnLabel = QStringLiteral("기준 DN(&N):");
inline const QString kDirFilterLabel = QStringLiteral("사용자 필터(&F):");
inline const QString kDirPageSizeLabel = QStringLiteral("페이지 크기:");
inline const QString kDirTimeoutLabel = QStringLiteral("제한 시간(초):");
inline const QString kDirTestButton = QStringLiteral("연결 테스트(&E)");
inline const QString kDirTesting = QStringLiteral("연결하는 중입니다...");
inline const QString kDirTestPassed = QStringLiteral("연결 테스트에 성공했습니다.");
inline const QString kDirTestFailed = QStringLiteral("연결 테스트에 실패했습니다.");
inline const QString kDirPresetLabel = QStringLiteral("미리 설정:");
inline const QString kDirPresetAd = QStringLiteral("Active Directory");
inline const QString kDirPresetOpenLdap = QStringLiteral("OpenLDAP (inetOrgPerson)");
inline const QString kDirPresetApply = QStringLiteral("적용(&A)");
inline const QString kDirAttributesGroup = QStringLiteral("사용자 정보의 속성 (쉼표로 여럿: 앞의 것부터)");
inline const QString kDirUniqueIdLabel = QStringLiteral("고유 ID 속성:");
inline const QString kDirDepartmentsGroup = QStringLiteral("부서와 직급");
inline const QString kDirFromOus = QStringLiteral("DN의 OU 경로 (기준 DN 아래, 최상위 부서 밑에)");
inline const QString kDirFromAttribute = QStringLiteral("속성 ('/'로 경로 구분):");
inline const QString kDirRankLabel = QStringLiteral("직급 속성:");
inline const QString kDirRankPlaceholder = QStringLiteral("(비우면 직급을 바꾸지 않음)");
inline const QString kDirLeaversGroup = QStringLiteral("퇴사자");
inline const QString kDirLeaversGone = QStringLiteral("디렉터리에서 사라진 사용자");
inline const QString kDirLeaversDisabled = QStringLiteral("사라지거나 사용 중지된 사용자 (userAccountControl)");
inline const QString kDirLeaversFilter = QStringLiteral("사라지거나 이 필터에 맞는 사용자:");
inline const QString kDirThresholdLabel = QStringLiteral("관리 사용자 중 이보다 많이 퇴사하면 멈춤:");
inline const QString kDirNewUsersGroup = QStringLiteral("새 사용자의 비밀번호");
inline const QString kDirPasswordLengthLabel = QStringLiteral("길이:");
inline const QString kDirPasswordAlphabetLabel = QStringLiteral("문자:");
inline const QString kDirPreviewButton = QStringLiteral("미리 보기(&V)");
inline const QString kDirStopButton = QStringLiteral("중지(&S)");
inline const QString kDirReading = QStringLiteral("디렉터리에서 항목 %1개를 읽었습니다...");
inline const QString kDirPreviewIntro = QStringLiteral(
    "미리 보기를 누르면 디렉터리를 읽어 조직도에 생길 변화를 보여 줍니다. 적용은 한 번의 실행 취소로 되돌릴 수 있으며, "
    "저장하기 전에는 데이터베이스에 기록되지 않습니다.");
inline const QString kDirSummary = QStringLiteral("추가 %1명, 수정 %2명, 변경 없음 %3명, 거부 %4명, 퇴사 %5명");
inline const QString kDirSummaryMore = QStringLiteral("부서 배치 제거 %1건, 새 부서 %2개, 새 직급 %3개, 새로 관리하는 "
                                                      "기존 사용자 %4명, 제외된 사용 중지 항목 %5개 (항목 %6개, "
                                                      "디렉터리 검색 %7초)");
inline const QString kDirChangedOnly = QStringLiteral("바뀌는 항목만 보기(&C)");
inline const QString kDirLeaversHeading = QStringLiteral("퇴사자 (모든 부서에서 빠지고 사용자로 남음)");
inline const QString kDirDnColumn = QStringLiteral("DN");
inline const QString kDirForceCheck = QStringLiteral("퇴사자 한도를 넘어도 적용(&O)");
inline const QString kDirApplyButton = QStringLiteral("조직도에 적용(&Y)");
inline const QString kDirApplied
    = QStringLiteral("적용했습니다: 추가 %1명, 수정 %2명, 퇴사 %3명. 저장(Ctrl+S)하면 데이터베이스에 기록됩니다.");
inline const QString kDirMailQuestion = QStringLiteral("새 사용자 %1명에게 등록메일(설치파일)을 보내시겠습니까?");
inline const QString kDirSaveSettings = QStringLiteral("설정 저장(&W)");
inline const QString kDirSettingsSaved = QStringLiteral("설정을 저장했습니다.");
inline const QString kDirSettingsNotSaved = QStringLiteral("설정을 저장하지 못했습니다.");
inline const QString kDirClose = QStringLiteral("닫기");

// Moving departments and users; what the chart editor and the rank editor show of the chart
inline const QString kCmdMoveDepartment = QStringLiteral("부서 이동(&V)...");
inline const QString kTipMoveDepartment = QStringLiteral("부서 이동");
inline const QString kPromptMoveDepartment = QStringLiteral("선택한 부서나 사용자를 다른 부서로 옮깁니다.");
inline const QString kMoveIntoItself = QStringLiteral("부서를 자기 자신이나 그 아래 부서로 옮길 수 없습니다.");
inline const QString kStepMoveDepartment = QStringLiteral("부서 이동: %1");
inline const QString kStepMoveMembers = QStringLiteral("사용자 부서 이동: %1");
inline const QString kChooseMembership = QStringLiteral("%1 님은 여러 부서에 속해 있습니다.\n어느 부서에서 옮길까요?");
inline const QString kPickDepartmentTitle = QStringLiteral("부서 이동");
inline const QString kPickDepartmentPrompt = QStringLiteral("옮겨 갈 부서를 고르세요.");
inline const QString kPickDepartmentSearch = QStringLiteral("부서 이름으로 찾기");
inline const QString kMemberNodeWithRank = QStringLiteral("%1 (%2)");
inline const QString kMemberNodeTip = QStringLiteral("아이디: %1\n부서: %2\n직급: %3");
inline const QString kDepartmentsColumn = QStringLiteral("부서");
inline const QString kMemberCount = QStringLiteral("%1명");
inline const QString kMatchCount = QStringLiteral("%1명 / 전체 %2명");
inline const QString kDragUsers = QStringLiteral("사용자 %1명: %2");
inline const QString kDragDepartment = QStringLiteral("부서: %1");
inline const QString kBadBirthday = QStringLiteral("생년월일은 1985-07-14처럼 입력하세요.");
inline const QString kRankGridSearchPlaceholder = QStringLiteral("아이디, 이름, 부서, 직급으로 찾기");

} // namespace sable::Msg
