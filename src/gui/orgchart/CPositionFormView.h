#pragma once

#include "widgets/Prompter.h"

#include <QWidget>

#include <vector>

class QLineEdit;
class QTableView;
class QTreeView;

namespace sable {

class CSableManagerDoc;
class MembershipRankModel;
class OrgNode;
class RankTreeModel;
struct Balloon;

// The rank editor: the rank list "직급" and the membership list "직급별 목록", in which the rank
// of every member placement is chosen, with a search box that narrows the memberships.
class CPositionFormView final : public QWidget
{
    Q_OBJECT

public:
    CPositionFormView(CSableManagerDoc& doc, QWidget* parent = nullptr);

    void setBalloonHelp(bool on) { m_bBalloonHelp = on; }
    void setPrompter(Prompter prompter) { m_prompter = std::move(prompter); }
    QTreeView* rankTree() const { return m_tree; }
    QTableView* membershipList() const { return m_grid; }
    QLineEdit* searchBox() const { return m_search; }
    RankTreeModel* rankModel() const { return m_rankModel; }
    MembershipRankModel* membershipModel() const { return m_membershipModel; }
    int selectedRank() const;

    void addRank();
    void renameRank();
    void deleteRank();
    void moveSelectedRank(bool up);
    void showHints();

Q_SIGNALS:
    void selectionChanged();

private:
    void selectRank(int rank);
    void setRanksOfSelectedRows(int command);
    void keepGridSelection();
    void restoreGridSelection();
    void showBalloon(const Balloon& balloon);

    CSableManagerDoc& m_doc;
    RankTreeModel* m_rankModel;
    MembershipRankModel* m_membershipModel;
    QTreeView* m_tree;
    QTableView* m_grid;
    QLineEdit* m_search;
    // The memberships selected while the grid is rebuilt under them.
    std::vector<const OrgNode*> m_keptPlacements;
    Prompter m_prompter = Prompter::messageBoxes();
    bool m_bBalloonHelp = true;
};

} // namespace sable
