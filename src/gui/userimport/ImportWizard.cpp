#include "userimport/ImportWizard.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "userimport/ImportFilePage.h"
#include "userimport/ImportMappingPage.h"
#include "userimport/ImportPreviewPage.h"

namespace sable {

ImportWizard::ImportWizard(CSableManagerDoc& doc, QWidget* parent)
    : QWizard(parent)
    , m_doc(doc)
    , m_filePage(new ImportFilePage(*this))
    , m_mappingPage(new ImportMappingPage(*this))
    , m_previewPage(new ImportPreviewPage(*this))
{
    setWindowTitle(Msg::kImportWizardTitle);
    setWizardStyle(QWizard::ClassicStyle);
    setOption(QWizard::NoBackButtonOnStartPage);
    setButtonText(QWizard::BackButton, Msg::kImportBackButton);
    setButtonText(QWizard::NextButton, Msg::kImportNextButton);
    setButtonText(QWizard::FinishButton, Msg::kImportFinishButton);
    setButtonText(QWizard::CancelButton, Msg::kCancel);
    setPage(FilePage, m_filePage);
    setPage(MappingPage, m_mappingPage);
    setPage(PreviewPage, m_previewPage);
    resize(760, 560);
}

ImportWizard::~ImportWizard() = default;

void ImportWizard::setTable(std::optional<ImportTable> table)
{
    m_table = std::move(table);
    ++m_tableGeneration;
    m_preview.reset();
}

void ImportWizard::makePreview()
{
    m_preview.reset();
    if (m_table)
        m_preview = std::make_unique<ImportPreview>(
            ImportPreview::make(m_doc.chart(), m_doc.ranks(), *m_table, m_mapping, m_mode));
}

void ImportWizard::accept()
{
    if (m_preview)
        m_result = ImportEdits::apply(m_doc, *m_preview);
    QWizard::accept();
}

} // namespace sable
