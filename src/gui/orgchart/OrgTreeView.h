#pragma once

#include <QTreeView>

#include <vector>

namespace sable {

class CSableManagerDoc;
class OrgNode;
class OrgTreeModel;

// The department tree's view. A department dragged within it lands before or after the node under
// the pointer (its upper or lower third) or in the department under it (the middle); member nodes
// and member rows land in the department under the pointer, which is highlighted meanwhile. A drag
// shows a small label beside the pointer instead of a picture of the nodes.
class OrgTreeView final : public QTreeView
{
    Q_OBJECT

public:
    explicit OrgTreeView(CSableManagerDoc& doc, QWidget* parent = nullptr);

    // Where dragged data dropped at `pos` of the viewport goes: the place `row` (-1 last) under the
    // department `parent`, shown by `marker` (the department's row, or a line between two rows).
    struct DropTarget
    {
        QModelIndex parent;
        int row = -1;
        QRect marker;
        bool bLine = false;
        bool isValid() const { return parent.isValid(); }
    };
    DropTarget dropTargetAt(const QPoint& pos, const QMimeData* dragged) const;
    // What a drag started on the current node takes: that department alone, or every selected
    // member node.
    std::vector<OrgNode*> draggedNodes() const;

protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    OrgTreeModel* treeModel() const;
    void showTarget(const DropTarget& target);

    CSableManagerDoc& m_doc;
    DropTarget m_target;
};

} // namespace sable
