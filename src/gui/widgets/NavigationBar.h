#pragma once

#include <QIcon>
#include <QWidget>

#include <vector>

class QToolButton;
class QVBoxLayout;

namespace sable {

// A bar of groups, each a header that opens its list of large-icon items; one group is open at a
// time. A click on an item reports the item; what it means is the owner's business.
class NavigationBar final : public QWidget
{
    Q_OBJECT

public:
    explicit NavigationBar(QWidget* parent = nullptr);

    int addGroup(const QString& title);
    // Adds an item to `group`; returns its index among all items.
    int addItem(int group, const QIcon& icon, const QString& text, int value);
    int itemData(int item) const;
    int itemCount() const { return static_cast<int>(m_items.size()); }
    QToolButton* itemButton(int item) const;
    QToolButton* groupButton(int group) const;

    void openGroup(int group);
    int openGroupIndex() const { return m_openGroup; }
    // Shows the item whose data is `value` as the current one (its group opens).
    void setCurrentData(int value);

Q_SIGNALS:
    void itemClicked(int item);

private:
    struct Group
    {
        QToolButton* header;
        QWidget* panel;
        QVBoxLayout* layout;
    };
    struct Item
    {
        int group;
        int data;
        QToolButton* button;
    };

    QVBoxLayout* m_layout;
    std::vector<Group> m_groups;
    std::vector<Item> m_items;
    int m_openGroup = -1;
};

} // namespace sable
