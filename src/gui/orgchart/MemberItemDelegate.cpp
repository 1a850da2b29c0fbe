#include "orgchart/MemberItemDelegate.h"

#include "orgchart/MemberRecord.h"

#include <QComboBox>
#include <QDateEdit>
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
    const QString text = index.data(Qt::EditRole).toString();
    if (column == ColBirthDay && (text.isEmpty() || QDate::fromString(text, QLatin1String(kDateFormat)).isValid())) {
        auto* date = new QDateEdit(parent);
        date->setDisplayFormat(QLatin1String(kDateFormat));
        date->setCalendarPopup(true);
        return date;
    }
    return QStyledItemDelegate::createEditor(parent, option, index);
}

void MemberItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentText(text);
        return;
    }
    if (auto* date = qobject_cast<QDateEdit*>(editor)) {
        const QDate value = QDate::fromString(text, QLatin1String(kDateFormat));
        date->setDate(value.isValid() ? value : QDate(1990, 1, 1));
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
    if (auto* date = qobject_cast<QDateEdit*>(editor)) {
        model->setData(index, date->date().toString(QLatin1String(kDateFormat)));
        return;
    }
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        model->setData(index, line->text());
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace sable
