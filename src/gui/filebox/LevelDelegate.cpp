#include "filebox/LevelDelegate.h"

#include "filebox/FileBoxLists.h"

#include <QComboBox>

namespace sable {

QWidget* LevelDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const
{
    auto* combo = new QComboBox(parent);
    for (const int level : {NoAccess, Read, ReadWrite})
        combo->addItem(FileBoxLists::levelName(level), level);
    auto* self = const_cast<LevelDelegate*>(this);
    connect(combo, &QComboBox::activated, self, [self, combo] {
        Q_EMIT self->commitData(combo);
        Q_EMIT self->closeEditor(combo);
    });
    return combo;
}

void LevelDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* combo = static_cast<QComboBox*>(editor);
    combo->setCurrentIndex(combo->findData(index.data(Qt::EditRole)));
}

void LevelDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    model->setData(index, static_cast<QComboBox*>(editor)->currentData());
}

QVariant levelCellData(int level, int role)
{
    if (role == Qt::DisplayRole)
        return FileBoxLists::levelName(level);
    return role == Qt::EditRole ? QVariant(level) : QVariant();
}

std::optional<int> levelOfValue(const QVariant& value)
{
    for (const int level : {NoAccess, Read, ReadWrite}) {
        if (value.toString() == FileBoxLists::levelName(level))
            return level;
    }
    bool bNumber = false;
    const int level = value.toInt(&bNumber);
    if (bNumber && level >= NoAccess && level <= ReadWrite)
        return level;
    return std::nullopt;
}

} // namespace sable
