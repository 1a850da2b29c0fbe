#pragma once

#include <QDialog>

class QLineEdit;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTreeView;

namespace sable {

class OrgChart;
class OrgNode;

// Picks the department to move something to: the departments as a tree, narrowed by a search box
// to those whose name holds the text (with the departments above them). The department being moved
// and everything below it cannot be picked.
class DepartmentPickerDialog final : public QDialog
{
    Q_OBJECT

public:
    DepartmentPickerDialog(const OrgChart& chart, const OrgNode* moving, QWidget* parent = nullptr);

    OrgNode* selectedDepartment() const;
    void selectDepartment(const OrgNode* department);
    QLineEdit* searchBox() const { return m_search; }
    QTreeView* tree() const { return m_tree; }

    // Opens the picker; the department picked, or nullptr when it is cancelled.
    static OrgNode* pick(const OrgChart& chart, const OrgNode* moving, QWidget* parent);

private:
    void fill(const OrgChart& chart, const OrgNode* moving);
    void updateOk();

    QLineEdit* m_search;
    QTreeView* m_tree;
    QStandardItemModel* m_model;
    QSortFilterProxyModel* m_filter;
};

} // namespace sable
