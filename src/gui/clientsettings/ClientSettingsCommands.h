#pragma once

class QWidget;

namespace sable {

class StartupConfig;

// The main window's commands for what the messenger clients show, each running its dialog modally.
// After OK the logo and home page commands write and tell the running server, reporting "전송 실패"
// when the notice cannot be sent; the file server list needs no notice (the server watches its flag).
namespace ClientSettingsCommands {

void runLogo(const StartupConfig& config, QWidget* parent); // "로고 설정 (&C)"
void runHomePage(const StartupConfig& config, QWidget* parent); // "홈페이지설정 (&H)"
void runFileServers(const StartupConfig& config, QWidget* parent); // "파일 서버 관리(&F)"

} // namespace ClientSettingsCommands
} // namespace sable
