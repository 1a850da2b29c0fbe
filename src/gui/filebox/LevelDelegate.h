#pragma once

#include <QStyledItemDelegate>

#include <optional>

namespace sable {

// The level cell of a permission list: a drop-down of "권한 없음", "읽기" and "읽기/쓰기". A choice
// applies as soon as it is made. The model takes the level as a number (Qt::EditRole).
class LevelDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
};

// The level a value given to a permission model stands for: a number 0..2 or a level's name.
std::optional<int> levelOfValue(const QVariant& value);
// A level cell of a permission model: its name to show, its number to edit.
QVariant levelCellData(int level, int role);

} // namespace sable
