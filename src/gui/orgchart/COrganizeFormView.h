#pragma once

#include "document/Balloon.h"
#include "document/ChartEdits.h"
#include "widgets/Prompter.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QTimer;

namespace sable {

class CSableManagerDoc;
class MemberListModel;
class MemberTableView;
class OrgTreeModel;
class OrgTreeView;

// The chart editor: the department tree "조직도" beside the member list "사원 목록", with every
// editing command on their context menus, dragging of member rows onto departments and of tree
// nodes within the tree, in-place editing, sorting by a column header, the search with its count
// of matching users, and the balloons that refuse or explain.
class COrganizeFormView final : public QWidget
{
    Q_OBJECT

public:
    // Chooses the department to move to; `moving` (a department, or nullptr for users) and what lies
    // below it cannot be chosen. nullptr: cancelled.
    using DepartmentPicker = std::function<OrgNode*(const OrgNode* moving)>;

    COrganizeFormView(CSableManagerDoc& doc, QWidget* parent = nullptr);
    ~COrganizeFormView() override;

    void setBalloonHelp(bool on);
    void setPrompter(Prompter prompter) { m_prompter = std::move(prompter); }
    void setDepartmentPicker(DepartmentPicker picker) { m_pickDepartment = std::move(picker); }
    OrgTreeView* tree() const { return m_tree; }
    MemberTableView* memberList() const { return m_list; }
    OrgTreeModel* treeModel() const { return m_treeModel; }
    MemberListModel* memberModel() const { return m_memberModel; }
    QLineEdit* searchBox() const { return m_search; }
    QLabel* countLabel() const { return m_count; }

    OrgNode* selectedNode() const;
    // Member rows (of the chart, not of the list as sorted and searched) that are selected; never
    // the entry row.
    std::vector<int> selectedMemberRows() const;

    // The commands of the main menu and the tool bar, on the current selection.
    void addDepartment();
    void renameDepartment();
    void deleteSelectedNode();
    void addUser();
    void deleteUsers();
    void moveSelectedNode(ChartEdits::Move how);
    // "사용자 찾기(&F)" (Ctrl+F): the search box, its text selected for typing over.
    void focusSearch();
    // "부서 이동...": the selected rows of the member list when it has the focus, else the selected
    // department or member nodes of the tree.
    void moveToDepartment();
    bool canMoveToDepartment() const;
    // "등록메일(설치파일) 전송(&M)": the selected rows of the member list, or from the tree the
    // member of a member node or every member below a department.
    void requestRegistrationMail(bool fromTree);
    // A click on a column header: ascending, then descending, then the list's own order again.
    void sortByColumn(int column);

    // Shows a balloon at the place it names; a hint only while balloon help is on.
    void showBalloon(const Balloon& balloon);
    // Shows the hint for a tree that holds only its top department, when it does.
    void showHints();

Q_SIGNALS:
    void selectionChanged();
    // The members whose registration mail is to be sent (K_MemberID, in order).
    void registrationMailRequested(const QList<int>& memberIds);

private:
    void setUpTree();
    void setUpMemberList();
    void buildTreeMenu(QMenu& menu, OrgNode* node);
    void buildMemberMenu(QMenu& menu);
    void addRankSubmenu(QMenu& menu, OrgNode* placement);
    void moveTreeSelection();
    void moveSelectedUsers();
    void applyOutcome(const EditOutcome& outcome);
    void onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous);
    void keepSelection();
    void restoreSelection();
    void updateCount();
    QModelIndex memberIndex(int row, int column) const;
    bool ask(const QString& question);

    CSableManagerDoc& m_doc;
    ChartEdits m_edits;
    OrgTreeModel* m_treeModel;
    MemberListModel* m_memberModel;
    OrgTreeView* m_tree;
    MemberTableView* m_list;
    QLineEdit* m_search;
    QLabel* m_count;
    QCheckBox* m_noDepartment;
    QTimer* m_searchDelay;
    Prompter m_prompter = Prompter::messageBoxes();
    DepartmentPicker m_pickDepartment;
    bool m_bBalloonHelp = true;
    bool m_bRevertingRow = false;
    // The selection while the member list is reset under it: by K_MemberID, -1 for the entry row.
    std::vector<int> m_keptIds;
    int m_keptCurrentId = -2;
    int m_keptColumn = 0;
    int m_keptScroll = 0;
};

} // namespace sable
