#include "widgets/NavigationBar.h"

#include <QToolButton>
#include <QVBoxLayout>

namespace sable {
namespace {

constexpr int kIconSize = 32;

} // namespace

NavigationBar::NavigationBar(QWidget* parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("NavigationBar"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addStretch(1);
    setAutoFillBackground(true);
    setStyleSheet(QStringLiteral(
        "#NavigationBar { background: #eef2f6; }"
        "QToolButton[role=\"group\"] { text-align: left; padding: 6px 10px; font-weight: bold; color: #24496e;"
        " background: qlineargradient(x1:0,y1:0,x2:0,y2:1, stop:0 #f7f9fb, stop:1 #dde5ee);"
        " border: none; border-bottom: 1px solid #c3cfdb; }"
        "QToolButton[role=\"item\"] { border: 1px solid transparent; border-radius: 4px; padding: 6px 2px; margin: 2px "
        "6px; }"
        "QToolButton[role=\"item\"]:hover { background: #dfe9f3; border-color: #b8cbe0; }"
        "QToolButton[role=\"item\"]:checked { background: #c9dbee; border-color: #7fa3c8; }"
        // Where the keyboard is, plainly: the styled buttons draw no focus frame of their own.
        "QToolButton[role=\"group\"]:focus { border: 2px solid #2a6fb0; }"
        "QToolButton[role=\"item\"]:focus { border: 2px solid #2a6fb0; }"));
}

int NavigationBar::addGroup(const QString& title)
{
    auto* header = new QToolButton(this);
    header->setProperty("role", QStringLiteral("group"));
    header->setText(title);
    header->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    header->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto* panel = new QWidget(this);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setSpacing(0);
    const int index = static_cast<int>(m_groups.size());
    // Headers and panels go above the closing stretch, in the order they are added.
    m_layout->insertWidget(m_layout->count() - 1, header);
    m_layout->insertWidget(m_layout->count() - 1, panel);
    m_groups.push_back({header, panel, layout});
    connect(header, &QToolButton::clicked, this, [this, index] { openGroup(index); });
    if (m_openGroup < 0)
        openGroup(index);
    else
        panel->hide();
    return index;
}

int NavigationBar::addItem(int group, const QIcon& icon, const QString& text, int value)
{
    auto* button = new QToolButton(m_groups[static_cast<size_t>(group)].panel);
    button->setProperty("role", QStringLiteral("item"));
    button->setIcon(icon);
    button->setIconSize(QSize(kIconSize, kIconSize));
    button->setText(text);
    button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_groups[static_cast<size_t>(group)].layout->addWidget(button);
    const int index = static_cast<int>(m_items.size());
    m_items.push_back({group, value, button});
    connect(button, &QToolButton::clicked, this, [this, index, button] {
        // The current item stays marked until the owner says which item is current.
        button->setChecked(!button->isChecked());
        Q_EMIT itemClicked(index);
    });
    return index;
}

int NavigationBar::itemData(int item) const
{
    return item >= 0 && item < itemCount() ? m_items[static_cast<size_t>(item)].data : -1;
}

QToolButton* NavigationBar::itemButton(int item) const
{
    return m_items[static_cast<size_t>(item)].button;
}

QToolButton* NavigationBar::groupButton(int group) const
{
    return m_groups[static_cast<size_t>(group)].header;
}

void NavigationBar::openGroup(int group)
{
    m_openGroup = group;
    for (size_t i = 0; i < m_groups.size(); ++i)
        m_groups[i].panel->setVisible(static_cast<int>(i) == group);
}

void NavigationBar::setCurrentData(int value)
{
    for (const Item& item : m_items) {
        item.button->setChecked(item.data == value);
        if (item.data == value && item.group != m_openGroup)
            openGroup(item.group);
    }
}

} // namespace sable
