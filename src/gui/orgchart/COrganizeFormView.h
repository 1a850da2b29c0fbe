#pragma once

#include "document/Balloon.h"
#include "document/ChartEdits.h"
#include "widgets/Prompter.h"

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QMenu;
class QTableView;
class QTimer;
class QTreeView;

namespace sable {

class CSableManagerDoc;
class MemberFilterModel;
class MemberListModel;
class OrgTreeModel;

// The chart editor: the department tree "조직도" beside the member list "사원 목록", with every
// editing command on their context menus, dragging of member rows onto departments, in-place
// editing, and the balloons that refuse or explain.
class COrganizeFormView final : public QWidget
{
    Q_OBJECT

public:
    COrganizeFormView(CSableManagerDoc& doc, QWidget* parent = nullptr);
    ~COrganizeFormView() override;

    void setBalloonHelp(bool on);
    void setPrompter(Prompter prompter) { m_prompter = std::move(prompter); }
    QTreeView* tree() const { return m_tree; }
    QTableView* memberList() const { return m_list; }
    OrgTreeModel* treeModel() const { return m_treeModel; }
    MemberListModel* memberModel() const { return m_memberModel; }
    MemberFilterModel* filterModel() const { return m_filter; }

    OrgNode* selectedNode() const;
    // Member rows (of the member list, not of the filtered view) that are selected; never the entry row.
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
    QLineEdit* searchBox() const { return m_search; }
    // "등록메일(설치파일) 전송(&M)": the selected rows of the member list, or from the tree the
    // member of a member node or every member below a department.
    void requestRegistrationMail(bool fromTree);

    // Shows a balloon at the place it names; a hint only while balloon help is on.
    void showBalloon(const Balloon& balloon);
    // Shows the hint for a tree that holds only its top department, when it does.
    void showHints();

Q_SIGNALS:
    void selectionChanged();
    // The members whose registration mail is to be sent (K_MemberID, in order).
    void registrationMailRequested(const QList<int>& memberIds);

private:
    void buildTreeMenu(QMenu& menu, OrgNode* node);
    void buildMemberMenu(QMenu& menu);
    void addRankSubmenu(QMenu& menu, OrgNode* placement);
    void applyOutcome(const EditOutcome& outcome);
    void onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous);
    QModelIndex memberIndex(int row, int column) const;
    bool ask(const QString& question);

    CSableManagerDoc& m_doc;
    ChartEdits m_edits;
    OrgTreeModel* m_treeModel;
    MemberListModel* m_memberModel;
    MemberFilterModel* m_filter;
    QTreeView* m_tree;
    QTableView* m_list;
    QLineEdit* m_search;
    QCheckBox* m_noDepartment;
    QTimer* m_searchDelay;
    Prompter m_prompter = Prompter::messageBoxes();
    bool m_bBalloonHelp = true;
    bool m_bRevertingRow = false;
};

} // namespace sable
