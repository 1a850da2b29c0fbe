#pragma once

#include <QWizardPage>

class QCheckBox;
class QLabel;
class QSortFilterProxyModel;
class QTableView;

namespace sable {

class ImportWizard;
class ImportPreviewModel;

// The last step: what the import would do, row by row (line, fate, ID, name, departments and the
// reasons of a refusal), with the counts and the departments and ranks that would be created. The
// page is complete when at least one user would be added or updated.
class ImportPreviewPage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit ImportPreviewPage(ImportWizard& wizard);
    ~ImportPreviewPage() override;

    void initializePage() override;
    void cleanupPage() override;
    bool isComplete() const override;

    QString summaryText() const;
    QTableView* rowsView() const { return m_view; }
    QCheckBox* refusedOnly() const { return m_refusedOnly; }

private:
    ImportWizard& m_wizard;
    QLabel* m_summary;
    QLabel* m_creates;
    QCheckBox* m_refusedOnly;
    QTableView* m_view;
    ImportPreviewModel* m_model;
    QSortFilterProxyModel* m_filter;
};

} // namespace sable
