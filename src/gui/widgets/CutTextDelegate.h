#pragma once

#include <QStyledItemDelegate>

namespace sable {

// Cells drawn as usual that, when their column is too narrow for their text, show the whole text
// as a tool tip; a cell that shows all of its text has none.
class CutTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override;

    // Whether the cell at `index`, drawn as `option` says, cuts its text short.
    bool isCut(const QStyleOptionViewItem& option, const QModelIndex& index) const;
};

} // namespace sable
