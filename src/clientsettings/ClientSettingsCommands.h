#pragma once

class QWidget;

namespace sable {

class StartupConfig;

// The main window's commands for what the messenger clients show. Each runs its dialog modally
// and, after OK, writes, tells the running server, and reports "전송 실패" when it cannot.
namespace ClientSettingsCommands {

void runLogo(const StartupConfig& config, QWidget* parent); // "로고 설정 (&C)"
void runHomePage(const StartupConfig& config, QWidget* parent); // "홈페이지설정 (&H)"
void runFileServers(const StartupConfig& config, QWidget* parent); // "파일 서버 관리(&F)"

} // namespace ClientSettingsCommands
} // namespace sable
