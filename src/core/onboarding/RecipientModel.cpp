#include "onboarding/RecipientModel.h"

#include "Messages.h"

#include <array>

namespace sable {

RecipientModel::RecipientModel(QObject* parent)
    : QAbstractTableModel(parent)
{ }

bool RecipientModel::AddRecipient(const QString& name, const QString& email, const QString& id, const QString& password)
{
    if (!email.contains(u'@') || !email.contains(u'.'))
        return false;
    for (const Row& row : std::as_const(m_rows)) {
        if (row.recipient.email == email)
            return false;
    }
    const int at = rowCount();
    beginInsertRows({}, at, at);
    m_rows.append(Row {{name, email, id, password}, Result::None});
    endInsertRows();
    return true;
}

void RecipientModel::setResult(int row, Result result)
{
    if (row < 0 || row >= rowCount() || m_rows[row].result == result)
        return;
    m_rows[row].result = result;
    const QModelIndex cell = index(row, ResultColumn);
    Q_EMIT dataChanged(cell, cell, {Qt::DisplayRole});
}

void RecipientModel::clearResults()
{
    for (int row = 0; row < rowCount(); ++row)
        setResult(row, Result::None);
}

void RecipientModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

int RecipientModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int RecipientModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant RecipientModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const Row& row = m_rows.at(index.row());
    switch (index.column()) {
    case NameColumn:
        return row.recipient.name;
    case IdColumn:
        return row.recipient.id;
    case EmailColumn:
        return row.recipient.email;
    case PasswordColumn:
        return row.recipient.password;
    case ResultColumn:
        return resultText(row.result);
    default:
        return {};
    }
}

QVariant RecipientModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return QAbstractTableModel::headerData(section, orientation, role);
    const std::array<QString, ColumnCount> headers {
        Msg::kRecipientName, Msg::kRecipientId, Msg::kRecipientEmail, Msg::kRecipientPassword, Msg::kRecipientResult};
    return headers.at(static_cast<std::size_t>(section));
}

QString RecipientModel::resultText(Result result)
{
    switch (result) {
    case Result::Sent:
        return Msg::kMailSent;
    case Result::Failed:
        return Msg::kMailFailed;
    case Result::None:
        break;
    }
    return {};
}

int RecipientModel::columnWidth(Column column)
{
    constexpr std::array<int, ColumnCount> widths {60, 60, 120, 60, 48};
    return widths.at(static_cast<std::size_t>(column));
}

} // namespace sable
