#pragma once

#include <QSortFilterProxyModel>

namespace sable {

// The member list as the search box narrows it: rows whose ID, name, e-mail, telephone numbers or
// departments hold the text, optionally only members in no department. The entry row always stays.
class MemberFilterModel final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit MemberFilterModel(QObject* parent = nullptr);

    void setSearchText(const QString& text);
    void setOnlyWithoutDepartment(bool on);
    bool isFiltering() const { return !m_text.isEmpty() || m_bOnlyWithoutDepartment; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    QString m_text;
    bool m_bOnlyWithoutDepartment = false;
};

} // namespace sable
