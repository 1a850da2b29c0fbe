#include "orgchart/MemberItemDelegate.h"

#include "orgchart/MemberRecord.h"

#include <QComboBox>
#include <QLineEdit>

namespace sable {

QWidget* MemberItemDelegate::createEditor(
    QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const int column = index.column();
    if (MemberColumns::isChoice(column)) {
        auto* combo = new QComboBox(parent);
        combo->addItems({MemberColumns::choiceText(column, true), MemberColumns::choiceText(column, false)});
        return combo;
    }
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto* line = qobject_cast<QLineEdit*>(editor); line && column == ColBirthDay)
        line->setPlaceholderText(QString::fromLatin1(kDateFormat).toUpper());
    return editor;
}

void MemberItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentText(index.data(Qt::EditRole).toString());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void MemberItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, combo->currentText());
        return;
    }
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        model->setData(index, line->text());
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace sable
