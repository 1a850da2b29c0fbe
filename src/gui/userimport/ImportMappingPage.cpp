#include "userimport/ImportMappingPage.h"

#include "Messages.h"
#include "userimport/ImportWizard.h"

#include <QComboBox>
#include <QHeaderView>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace sable {
namespace {

enum GridColumn
{
    FieldNameColumn,
    FileColumnColumn,
    SampleColumn,
    GridColumnCount
};

} // namespace

ImportMappingPage::ImportMappingPage(ImportWizard& wizard)
    : m_wizard(wizard)
    , m_grid(new QTableWidget(ImportFieldCount, GridColumnCount, this))
    , m_addOnly(new QRadioButton(Msg::kImportAddOnly, this))
    , m_addAndUpdate(new QRadioButton(Msg::kImportAddAndUpdate, this))
{
    setTitle(Msg::kImportMappingPageTitle);
    setSubTitle(Msg::kImportMappingPageText);
    m_grid->setObjectName(QStringLiteral("mapping"));
    m_grid->setHorizontalHeaderLabels({Msg::kImportFieldColumn, Msg::kImportFileColumn, Msg::kImportSampleColumn});
    m_grid->verticalHeader()->hide();
    m_grid->setSelectionMode(QAbstractItemView::NoSelection);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->setColumnWidth(FieldNameColumn, 110);
    m_grid->setColumnWidth(FileColumnColumn, 200);
    for (int field = 0; field < ImportFieldCount; ++field) {
        m_grid->setItem(field, FieldNameColumn, new QTableWidgetItem(ColumnMapping::fieldName(field)));
        m_grid->setItem(field, SampleColumn, new QTableWidgetItem);
        auto* choice = new QComboBox(m_grid);
        m_grid->setCellWidget(field, FileColumnColumn, choice);
        m_choices.push_back(choice);
        connect(choice, &QComboBox::currentIndexChanged, this, [this, field](int item) { columnChosen(field, item); });
    }
    m_addOnly->setChecked(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_grid, 1);
    layout->addWidget(m_addOnly);
    layout->addWidget(m_addAndUpdate);
}

void ImportMappingPage::initializePage()
{
    // A file read afresh gets the matching of its own header; coming back keeps the choices made.
    if (m_generation == m_wizard.tableGeneration() || !m_wizard.table())
        return;
    m_generation = m_wizard.tableGeneration();
    const ImportTable& table = *m_wizard.table();
    m_wizard.mapping() = table.bHeader ? ColumnMapping::matchHeaders(table.columns)
                                       : ColumnMapping::byPosition(static_cast<int>(table.columns.size()));
    m_bShowing = true;
    for (QComboBox* choice : m_choices) {
        choice->clear();
        choice->addItem(Msg::kImportNotImported);
        choice->addItems(table.columns);
    }
    m_bShowing = false;
    showMapping();
}

void ImportMappingPage::columnChosen(int field, int item)
{
    if (m_bShowing || item < 0)
        return;
    m_wizard.mapping().setColumn(field, item - 1);
    showMapping();
}

void ImportMappingPage::showMapping()
{
    const ImportTable& table = *m_wizard.table();
    const QStringList first = table.rows.empty() ? QStringList() : table.rows.front().fields;
    m_bShowing = true;
    for (int field = 0; field < ImportFieldCount; ++field) {
        const int column = m_wizard.mapping().column(field);
        m_choices[static_cast<size_t>(field)]->setCurrentIndex(column + 1);
        m_grid->item(field, SampleColumn)->setText(column >= 0 ? first.value(column) : QString());
    }
    m_bShowing = false;
    Q_EMIT completeChanged();
}

bool ImportMappingPage::isComplete() const
{
    return m_wizard.table() && m_wizard.mapping().isMapped(ColMemberID);
}

bool ImportMappingPage::validatePage()
{
    m_wizard.setMode(m_addAndUpdate->isChecked() ? ImportMode::AddAndUpdate : ImportMode::AddOnly);
    return true;
}

} // namespace sable
