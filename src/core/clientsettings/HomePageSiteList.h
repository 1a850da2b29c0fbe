#pragma once

#include <QList>
#include <QString>

namespace sable {

// One link of the clients' home page button, as the list shows it: the name column (the address
// when no name was given) and the address.
struct HomePageSite
{
    QString name;
    QString address;

    bool operator==(const HomePageSite&) const = default;
};

// The ordered links and the one-value form they are stored in: "|name|address|name|address|".
// The form has no escaping, which is why "|" may not be typed into a name or an address.
class HomePageSiteList
{
public:
    static constexpr int kMaxSites = 20;
    static inline const QString kForbidden = QStringLiteral("|");

    enum class EntryCheck
    {
        Accepted,
        ForbiddenCharacter,
        BothEmpty,
    };

    // A name or an address may be left empty, not both; neither may hold a character of `forbidden`.
    static EntryCheck checkEntry(const QString& name, const QString& address, const QString& forbidden);

    // The links of a stored value: fields split at "|" with empty ones skipped, taken in pairs; an
    // odd last field becomes a link without an address.
    static HomePageSiteList fromValue(const QString& value);
    QString toValue() const;

    const QList<HomePageSite>& rows() const { return m_rows; }
    qsizetype size() const { return m_rows.size(); }
    bool canAdd() const { return m_rows.size() < kMaxSites; }

    // Appends a row that shows the name, or the address when the name is empty.
    void AddSiteRow(const QString& name, const QString& address);
    // Rewrites one row by the same rule, keeping its place.
    void replaceRow(qsizetype index, const QString& name, const QString& address);
    void removeRows(QList<qsizetype> indexes);
    // Swaps a row with its neighbour; false at either end.
    bool moveUp(qsizetype index);
    bool moveDown(qsizetype index);

private:
    static HomePageSite makeRow(const QString& name, const QString& address);

    QList<HomePageSite> m_rows;
};

} // namespace sable
