#pragma once

#include "directory/DirectorySettings.h"
#include "widgets/Prompter.h"

#include <QDialog>
#include <QList>

class QTabWidget;

namespace sable {

class CSableManagerDoc;
class DirectoryConnectionPage;
class DirectoryMappingPage;
class DirectoryPreviewPage;

// "디렉터리 동기화": the directory's settings, the connection test, the mapping, and the preview and
// application of a sync to the chart. The settings are stored when the administrator says so; the
// test and the preview work with the form as it stands. Usage:
//   DirectorySyncDialog dialog(doc, registry, prompter, this);
//   dialog.exec();  // then dialog.mailRecipients() for the registration mail
class DirectorySyncDialog final : public QDialog
{
    Q_OBJECT

public:
    DirectorySyncDialog(CSableManagerDoc& doc, Registry registry, Prompter prompter, QWidget* parent = nullptr);
    ~DirectorySyncDialog() override;

    // The settings as the form stands (the stored password where none was typed).
    DirectorySettings settings() const;
    // Stores the form's settings; false, after saying why, when they cannot be used or stored.
    bool saveSettings();

    // The new users whose registration mail the administrator asked for when applying.
    const QList<int>& mailRecipients() const { return m_mailRecipients; }

    DirectoryConnectionPage* connectionPage() const { return m_connection; }
    DirectoryMappingPage* mappingPage() const { return m_mapping; }
    DirectoryPreviewPage* previewPage() const { return m_preview; }
    QTabWidget* tabs() const { return m_tabs; }

    void reject() override;

private:
    Registry m_registry;
    Prompter m_prompter;
    DirectorySettings m_stored;
    QList<int> m_mailRecipients;
    QTabWidget* m_tabs;
    DirectoryConnectionPage* m_connection;
    DirectoryMappingPage* m_mapping;
    DirectoryPreviewPage* m_preview;
};

} // namespace sable
