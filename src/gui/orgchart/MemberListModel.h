#pragma once

#include "document/Balloon.h"
#include "orgchart/OrgChartListener.h"

#include <QAbstractTableModel>

namespace sable {

class CSableManagerDoc;
class OrgChart;

// The member list as a Qt model: a row per member and, last, the empty entry row in which a new
// member is typed; the fourteen columns of the list. Members in no department are shown faded.
// Edits go through the chart's editing commands; a refused edit asks for a balloon.
class MemberListModel final
    : public QAbstractTableModel
    , private OrgChartListener
{
    Q_OBJECT

public:
    enum Role
    {
        MemberIdRole = Qt::UserRole + 1, // K_MemberID of a member row, -1 for the entry row
        FadedRole, // true for a member in no department
        SearchTextRole, // what the search box looks through
    };

    explicit MemberListModel(CSableManagerDoc& doc, QObject* parent = nullptr);
    ~MemberListModel() override;

    void setBalloonHelp(bool on) { m_bBalloonHelp = on; }
    int entryRow() const;
    bool isEntryRow(int row) const { return row == entryRow(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;

Q_SIGNALS:
    // Show `balloon` at the cell it names (rows and columns of this model).
    void balloonRequested(const sable::Balloon& balloon);

private:
    void chartAboutToReset() override;
    void chartReset() override;
    void membersAboutToBeInserted(int first, int last) override;
    void membersInserted(int first, int last) override;
    void membersAboutToBeRemoved(int first, int last) override;
    void membersRemoved(int first, int last) override;
    void memberListAboutToReset() override;
    void memberListReset() override;
    void memberChanged(int row) override;

    CSableManagerDoc& m_doc;
    OrgChart& m_chart;
    bool m_bBalloonHelp = true;
};

} // namespace sable
