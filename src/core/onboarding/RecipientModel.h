#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QSet>

#include <optional>

namespace sable {

// One person to receive the account notice, as the chart editor hands them over.
struct Recipient
{
    QString name;
    QString email;
    QString id;
    QString password;
};

// The recipient grid of the registration mail: one row per recipient and the outcome of the last
// send to each. Rows are added by the chart editor and never edited in place.
class RecipientModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        IdColumn,
        EmailColumn,
        PasswordColumn,
        ResultColumn,
        ColumnCount
    };
    enum class Result
    {
        None,
        Sent,
        Failed
    };

    explicit RecipientModel(QObject* parent = nullptr);

    // Appends a recipient. Refused, silently, when the address lacks "@" or ".", or when a row
    // already holds the same address text. True when the row was added.
    bool AddRecipient(const QString& name, const QString& email, const QString& id, const QString& password);
    // The same for many at once, in their order, as one insertion; returns how many were added.
    int addRecipients(const QList<Recipient>& recipients);

    const Recipient& recipient(int row) const { return m_rows.at(row).recipient; }
    Result result(int row) const { return m_rows.at(row).result; }
    void setResult(int row, Result result);
    void clearResults();
    void clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    static QString resultText(Result result);
    // The grid's column widths, in pixels.
    static int columnWidth(Column column);

private:
    struct Row
    {
        Recipient recipient;
        Result result = Result::None;
    };
    QList<Row> m_rows;
    QSet<QString> m_emails; // the addresses of m_rows
};

} // namespace sable
