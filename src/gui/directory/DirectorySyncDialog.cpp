#include "directory/DirectorySyncDialog.h"

#include "Messages.h"
#include "directory/DirectoryConnectionPage.h"
#include "directory/DirectoryMappingPage.h"
#include "directory/DirectoryPreviewPage.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace sable {

DirectorySyncDialog::DirectorySyncDialog(CSableManagerDoc& doc, Registry registry, Prompter prompter, QWidget* parent)
    : QDialog(parent)
    , m_registry(std::move(registry))
    , m_prompter(std::move(prompter))
    , m_stored(DirectorySettings::read(m_registry))
    , m_tabs(new QTabWidget(this))
    , m_connection(new DirectoryConnectionPage(this))
    , m_mapping(new DirectoryMappingPage(this))
    , m_preview(new DirectoryPreviewPage(doc, m_prompter, this))
{
    setWindowTitle(Msg::kDirDialogTitle);
    m_connection->load(m_stored);
    m_mapping->load(m_stored);
    const auto form = [this] { return settings(); };
    m_connection->setSettingsSource(form);
    m_preview->setSettingsSource(form);
    connect(m_mapping, &DirectoryMappingPage::presetApplied, this, [this](const QString& filter) {
        m_connection->findChild<QLineEdit*>(QStringLiteral("filter"))->setText(filter);
    });
    connect(m_preview, &DirectoryPreviewPage::mailRequested, this, [this](const QList<int>& ids) {
        m_mailRecipients = ids;
        accept();
    });
    m_tabs->addTab(m_connection, Msg::kDirConnectionTab);
    m_tabs->addTab(m_mapping, Msg::kDirMappingTab);
    m_tabs->addTab(m_preview, Msg::kDirPreviewTab);

    auto* box = new QDialogButtonBox(this);
    QPushButton* save = box->addButton(Msg::kDirSaveSettings, QDialogButtonBox::ApplyRole);
    save->setObjectName(QStringLiteral("saveSettings"));
    box->addButton(Msg::kDirClose, QDialogButtonBox::RejectRole);
    connect(save, &QPushButton::clicked, this, [this] {
        if (saveSettings())
            m_prompter.inform(this, Msg::kDirSettingsSaved);
    });
    connect(box, &QDialogButtonBox::rejected, this, &DirectorySyncDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(box);
    resize(900, 640);
}

DirectorySyncDialog::~DirectorySyncDialog() = default;

DirectorySettings DirectorySyncDialog::settings() const
{
    DirectorySettings settings = m_stored;
    m_connection->store(settings);
    m_mapping->store(settings);
    return settings;
}

bool DirectorySyncDialog::saveSettings()
{
    const DirectorySettings form = settings();
    if (const QString problem = form.problem(); !problem.isEmpty()) {
        m_prompter.warn(this, problem);
        return false;
    }
    if (!form.write(m_registry)) {
        m_prompter.warn(this, Msg::kDirSettingsNotSaved);
        return false;
    }
    m_stored = form;
    m_connection->load(m_stored);
    return true;
}

void DirectorySyncDialog::reject()
{
    // A preview under way is stopped, and the dialog goes once it has ended.
    if (m_preview->isRunning()) {
        m_preview->stop();
        connect(m_preview, &DirectoryPreviewPage::previewFinished, this, &QDialog::reject, Qt::SingleShotConnection);
        return;
    }
    QDialog::reject();
}

} // namespace sable
