#include "app/CMainFrame.h"

#include "Messages.h"
#include "app/ServerDatabase.h"
#include "app/StartupSteps.h"

#include <QLabel>
#include <QMessageBox>
#include <QStatusBar>

namespace sable {

CMainFrame::CMainFrame(StartupConfig config, StartupSettings settings, QWidget* parent)
    : QMainWindow(parent)
    , m_config(std::move(config))
    , m_settings(std::move(settings))
{
    setWindowTitle(QStringLiteral("SableManager"));
    resize(770, 630);
    auto* central = new QLabel(this);
    central->setAlignment(Qt::AlignCenter);
    central->setText(
        QStringLiteral("<h2>Sable Manager 4.0</h2><p>%1</p>").arg(m_config.paths().programFolder.toHtmlEscaped()));
    setCentralWidget(central);
    statusBar()->showMessage(
        QStringLiteral("%1  |  %2").arg(m_config.paths().programFolder, ServerDatabase::describe(m_config)));
}

void CMainFrame::postCreate()
{
    const auto report = [this](const QString& caption, const QString& text) {
        QMessageBox::critical(nullptr, caption, text);
        Q_UNUSED(this);
    };
    StartupSteps::ensureEmbeddedDatabase(m_config);
    if (StartupSteps::repairBuddyListColumn(m_config, report) == StartupSteps::ColumnRepair::DatabaseFailed)
        QMessageBox::warning(this, windowTitle(), Msg::kDatabaseOpenFailed);
    StartupSteps::fillPassiveAddress(m_config);
}

} // namespace sable
