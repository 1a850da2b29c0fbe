#pragma once

#include "document/ImportEdits.h"
#include "userimport/ImportPreview.h"

#include <QWizard>

#include <memory>
#include <optional>

namespace sable {

class CSableManagerDoc;
class ImportFilePage;
class ImportMappingPage;
class ImportPreviewPage;

// "외부 테이터 가져오기": brings users from a CSV or tab-separated file into the chart in three
// steps: the file (encoding and delimiter detected, and changeable), which column feeds which field,
// and a preview of every row's fate. Finishing imports as one step that can be undone; nothing
// reaches the database before the chart is saved. Usage: ImportWizard wizard(doc, this); wizard.exec();
class ImportWizard final : public QWizard
{
    Q_OBJECT

public:
    enum PageId
    {
        FilePage,
        MappingPage,
        PreviewPage,
    };

    explicit ImportWizard(CSableManagerDoc& doc, QWidget* parent = nullptr);
    ~ImportWizard() override;

    CSableManagerDoc& doc() const { return m_doc; }

    // The file as the file page reads it; nullopt while no readable file is chosen.
    const std::optional<ImportTable>& table() const { return m_table; }
    void setTable(std::optional<ImportTable> table);
    // Grows by one whenever the file is read again, so that the later pages start afresh.
    int tableGeneration() const { return m_tableGeneration; }

    ColumnMapping& mapping() { return m_mapping; }
    ImportMode mode() const { return m_mode; }
    void setMode(ImportMode mode) { m_mode = mode; }

    // The preview the last page shows, made from the table, the mapping and the mode.
    const ImportPreview* preview() const { return m_preview.get(); }
    void makePreview();

    // What the import did once the wizard finished; nullopt before, or when nothing was imported.
    const std::optional<ImportResult>& result() const { return m_result; }

    ImportFilePage* filePage() const { return m_filePage; }
    ImportMappingPage* mappingPage() const { return m_mappingPage; }
    ImportPreviewPage* previewPage() const { return m_previewPage; }

    void accept() override;

private:
    CSableManagerDoc& m_doc;
    std::optional<ImportTable> m_table;
    int m_tableGeneration = 0;
    ColumnMapping m_mapping;
    ImportMode m_mode = ImportMode::AddOnly;
    std::unique_ptr<ImportPreview> m_preview;
    std::optional<ImportResult> m_result;
    ImportFilePage* m_filePage;
    ImportMappingPage* m_mappingPage;
    ImportPreviewPage* m_previewPage;
};

} // namespace sable
