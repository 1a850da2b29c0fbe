#pragma once

#include "widgets/CutTextDelegate.h"

namespace sable {

// Editors of the member list's cells: a drop-down list for the choice columns, a line for the rest
// (the birthday included: the chart's rules read the forms administrators type). Limits are checked
// when the edit is committed, so that a text too long is refused with a note rather than cut.
// A cell too narrow for its text shows it whole as a tool tip.
class MemberItemDelegate final : public CutTextDelegate
{
    Q_OBJECT

public:
    using CutTextDelegate::CutTextDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    static constexpr const char* kDateFormat = "yyyy-MM-dd";
};

} // namespace sable
