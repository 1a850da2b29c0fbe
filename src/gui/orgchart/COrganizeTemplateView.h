#pragma once

#include <QWidget>

namespace sable {

class COrganizeFormView;
class CSableManagerDoc;

// The page of the chart editor: its title above the editor form.
class COrganizeTemplateView final : public QWidget
{
    Q_OBJECT

public:
    COrganizeTemplateView(CSableManagerDoc& doc, QWidget* parent = nullptr);

    COrganizeFormView* form() const { return m_form; }

private:
    COrganizeFormView* m_form;
};

// A page title as every view of the content pane shows it.
QWidget* makePageTitle(const QString& title, QWidget* parent);

} // namespace sable
