#pragma once

#include "app/StartupConfig.h"

#include <QMainWindow>

namespace sable {

// The console's main window.
class CMainFrame final : public QMainWindow
{
    Q_OBJECT

public:
    CMainFrame(StartupConfig config, StartupSettings settings, QWidget* parent = nullptr);

    const StartupConfig& config() const { return m_config; }
    const StartupSettings& settings() const { return m_settings; }

    // The steps that follow the creation of the window: the column repair of the database and the
    // file-box server's passive-mode address.
    void postCreate();

private:
    StartupConfig m_config;
    StartupSettings m_settings;
};

} // namespace sable
