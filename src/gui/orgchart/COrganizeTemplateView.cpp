#include "orgchart/COrganizeTemplateView.h"

#include "Messages.h"
#include "orgchart/COrganizeFormView.h"

#include <QLabel>
#include <QVBoxLayout>

namespace sable {

QWidget* makePageTitle(const QString& title, QWidget* parent)
{
    auto* label = new QLabel(title, parent);
    label->setObjectName(QStringLiteral("PageTitle"));
    label->setStyleSheet(QStringLiteral("#PageTitle { font-size: 15px; font-weight: bold; color: #24496e;"
                                        " padding: 6px 8px; border-bottom: 2px solid #2a9d8f; }"));
    return label;
}

COrganizeTemplateView::COrganizeTemplateView(CSableManagerDoc& doc, QWidget* parent)
    : QWidget(parent)
    , m_form(new COrganizeFormView(doc, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(makePageTitle(Msg::kChartEditorTitle, this));
    layout->addWidget(m_form, 1);
}

} // namespace sable
