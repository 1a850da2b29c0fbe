#pragma once

#include <QStyledItemDelegate>

namespace sable {

// Editors of the member list's cells: a drop-down list for the choice columns, a date field for the
// birthday (free text when the stored text is not a date), a line for the rest. Limits are checked
// when the edit is committed, so that a text too long is refused with a note rather than cut.
class MemberItemDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    static constexpr const char* kDateFormat = "yyyy-MM-dd";
};

} // namespace sable
