#pragma once

#include <QWizardPage>

#include <vector>

class QComboBox;
class QRadioButton;
class QTableWidget;

namespace sable {

class ImportWizard;

// The second step: which column of the file feeds which field, matched from the header names and
// adjustable, with the first row's value beside each; and whether users whose ID exists are updated.
// The page is complete once a column feeds the ID.
class ImportMappingPage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit ImportMappingPage(ImportWizard& wizard);

    void initializePage() override;
    bool isComplete() const override;
    bool validatePage() override;

    // The combo box of a field: item 0 "(가져오지 않음)", item c + 1 the file's column c.
    QComboBox* columnChoice(int field) const { return m_choices[static_cast<size_t>(field)]; }
    QRadioButton* updateChoice() const { return m_addAndUpdate; }

private:
    void columnChosen(int field, int item);
    void showMapping();

    ImportWizard& m_wizard;
    QTableWidget* m_grid;
    std::vector<QComboBox*> m_choices;
    QRadioButton* m_addOnly;
    QRadioButton* m_addAndUpdate;
    int m_generation = -1;
    bool m_bShowing = false;
};

} // namespace sable
