#pragma once

#include "document/FileBoxEdits.h"

#include <QWidget>

#include <optional>

class QAbstractItemView;
class QLineEdit;
class QTableView;
class QTreeView;

namespace sable {

class CSableManagerDoc;
class GranteeMemberModel;
class GranteeTreeModel;
class MemberFilterModel;

// The chart beside a permission list: the department tree above the member list (with its search
// box), both read-only. A department or a user is chosen by a click and dragged onto a permission
// list; the last view clicked says what is chosen.
class ChartSourcePane final : public QWidget
{
    Q_OBJECT

public:
    explicit ChartSourcePane(CSableManagerDoc& doc, QWidget* parent = nullptr);

    QTreeView* tree() const { return m_tree; }
    QTableView* memberList() const { return m_list; }
    GranteeTreeModel* treeModel() const { return m_treeModel; }
    GranteeMemberModel* memberModel() const { return m_memberModel; }

    // What was chosen last: the current item of the tree or of the member list.
    std::optional<Grantee> currentGrantee() const;
    // Every department and user selected in the view chosen from last.
    std::vector<Grantee> selectedGrantees() const;

Q_SIGNALS:
    void currentGranteeChanged();
    // The context menu is asked for at `globalPos`, over a chosen item.
    void menuRequested(const QPoint& globalPos);

private:
    void choose(QAbstractItemView* view);

    GranteeTreeModel* m_treeModel;
    MemberFilterModel* m_filter;
    GranteeMemberModel* m_memberModel;
    QTreeView* m_tree;
    QTableView* m_list;
    QLineEdit* m_search;
    QAbstractItemView* m_chosenFrom = nullptr;
};

} // namespace sable
