#include "clientsettings/HomePageSiteList.h"

#include <algorithm>

namespace sable {

HomePageSiteList::EntryCheck HomePageSiteList::checkEntry(
    const QString& name, const QString& address, const QString& forbidden)
{
    const auto holdsForbidden = [&forbidden](const QString& text) {
        return std::any_of(forbidden.cbegin(), forbidden.cend(), [&text](QChar ch) { return text.contains(ch); });
    };
    if (holdsForbidden(name) || holdsForbidden(address))
        return EntryCheck::ForbiddenCharacter;
    if (name.isEmpty() && address.isEmpty())
        return EntryCheck::BothEmpty;
    return EntryCheck::Accepted;
}

HomePageSiteList HomePageSiteList::fromValue(const QString& value)
{
    HomePageSiteList list;
    const QStringList fields = value.split(kForbidden, Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < fields.size(); i += 2)
        list.AddSiteRow(fields[i], i + 1 < fields.size() ? fields[i + 1] : QString());
    return list;
}

QString HomePageSiteList::toValue() const
{
    if (m_rows.isEmpty())
        return QString();
    QString value = kForbidden;
    for (const HomePageSite& row : m_rows)
        value += row.name + kForbidden + row.address + kForbidden;
    return value;
}

void HomePageSiteList::AddSiteRow(const QString& name, const QString& address)
{
    m_rows.append(makeRow(name, address));
}

void HomePageSiteList::replaceRow(qsizetype index, const QString& name, const QString& address)
{
    if (index >= 0 && index < m_rows.size())
        m_rows[index] = makeRow(name, address);
}

void HomePageSiteList::removeRows(QList<qsizetype> indexes)
{
    std::sort(indexes.begin(), indexes.end(), std::greater<>());
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    for (const qsizetype index : indexes) {
        if (index >= 0 && index < m_rows.size())
            m_rows.removeAt(index);
    }
}

bool HomePageSiteList::moveUp(qsizetype index)
{
    if (index <= 0 || index >= m_rows.size())
        return false;
    m_rows.swapItemsAt(index, index - 1);
    return true;
}

bool HomePageSiteList::moveDown(qsizetype index)
{
    return moveUp(index + 1);
}

HomePageSite HomePageSiteList::makeRow(const QString& name, const QString& address)
{
    return HomePageSite {name.isEmpty() ? address : name, address};
}

} // namespace sable
