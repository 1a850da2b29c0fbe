#pragma once

#include <QTableView>

namespace sable {

class CSableManagerDoc;

// The member list's view: dragging selected rows shows a small label beside the pointer ("사용자
// 3명: 김정훈, 박서연, …") instead of a picture of every cell, so the department aimed at stays in sight.
class MemberTableView final : public QTableView
{
    Q_OBJECT

public:
    explicit MemberTableView(CSableManagerDoc& doc, QWidget* parent = nullptr);

    // The label a drag of the selected rows shows.
    QString dragLabel() const;

protected:
    void startDrag(Qt::DropActions supportedActions) override;

private:
    std::vector<int> selectedMemberIds() const;

    CSableManagerDoc& m_doc;
};

} // namespace sable
