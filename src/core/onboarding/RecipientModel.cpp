#include "onboarding/RecipientModel.h"

#include "Messages.h"

#include <array>

namespace sable {

RecipientModel::RecipientModel(QObject* parent)
    : QAbstractTableModel(parent)
{ }

bool RecipientModel::AddRecipient(const QString& name, const QString& email, const QString& id, const QString& password)
{
    return addRecipients({{name, email, id, password}}) == 1;
}

int RecipientModel::addRecipients(const QList<Recipient>& recipients)
{
    // The addresses already listed are kept in a set: a department of thousands is checked in one pass.
    QList<Row> fresh;
    for (const Recipient& recipient : recipients) {
        const QString& email = recipient.email;
        if (!email.contains(u'@') || !email.contains(u'.') || m_emails.contains(email))
            continue;
        m_emails.insert(email);
        fresh.append(Row {recipient, Result::None});
    }
    if (fresh.isEmpty())
        return 0;
    const int at = rowCount();
    beginInsertRows({}, at, at + static_cast<int>(fresh.size()) - 1);
    m_rows.append(fresh);
    endInsertRows();
    return static_cast<int>(fresh.size());
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
    m_emails.clear();
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
