#include "mainwindow/CommandTable.h"

#include "Messages.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace sable {

CommandTable::CommandTable(QObject* owner, std::function<void(int id)> trigger)
    : m_owner(owner)
    , m_trigger(std::move(trigger))
{ }

void CommandTable::add(Command command)
{
    Q_ASSERT(!m_actions.contains(command.id));
    auto* action = new QAction(command.icon, command.text, m_owner);
    action->setShortcuts(command.shortcuts);
    action->setToolTip(command.toolTip);
    action->setStatusTip(command.statusTip);
    action->setCheckable(static_cast<bool>(command.isChecked));
    if (!command.toolText.isEmpty())
        action->setIconText(command.toolText);
    const int id = command.id;
    QObject::connect(action, &QAction::triggered, m_owner, [this, id] { m_trigger(id); });
    m_actions.insert(id, action);
    m_commands.push_back(std::move(command));
}

const Command* CommandTable::find(int id) const
{
    for (const Command& command : m_commands) {
        if (command.id == id)
            return &command;
    }
    return nullptr;
}

QString CommandTable::menuTitle(MenuId menu)
{
    switch (menu) {
    case MenuId::File:
        return Msg::kMenuFile;
    case MenuId::Edit:
        return Msg::kMenuEdit;
    case MenuId::View:
        return Msg::kMenuView;
    case MenuId::Server:
        return Msg::kMenuServer;
    case MenuId::ServerSettings:
        return Msg::kMenuServerSettings;
    case MenuId::Help:
        return Msg::kMenuHelp;
    case MenuId::None:
        break;
    }
    return {};
}

void CommandTable::fillMenuBar(QMenuBar* bar) const
{
    for (int m = 0; m < static_cast<int>(MenuId::None); ++m) {
        const auto menuId = static_cast<MenuId>(m);
        QMenu* menu = bar->addMenu(menuTitle(menuId));
        for (const Command& command : m_commands) {
            if (command.menu != menuId)
                continue;
            if (command.bSeparatorBefore)
                menu->addSeparator();
            menu->addAction(action(command.id));
        }
    }
}

void CommandTable::fillToolBar(QToolBar* bar) const
{
    int lastGroup = 0;
    for (const Command& command : m_commands) {
        if (command.toolBarGroup == 0)
            continue;
        if (lastGroup != 0 && command.toolBarGroup != lastGroup)
            bar->addSeparator();
        lastGroup = command.toolBarGroup;
        bar->addAction(action(command.id));
    }
}

bool CommandTable::isEnabled(const Command& command, int currentView) const
{
    if (!command.views.isEmpty() && !command.views.contains(currentView))
        return false;
    return !command.isEnabled || command.isEnabled();
}

void CommandTable::updateStates(int currentView) const
{
    for (const Command& command : m_commands) {
        QAction* entry = action(command.id);
        entry->setEnabled(isEnabled(command, currentView));
        if (command.menu != MenuId::None && !command.views.isEmpty())
            entry->setVisible(command.views.contains(currentView));
        if (command.isChecked)
            entry->setChecked(command.isChecked());
        if (command.liveText)
            entry->setText(command.liveText());
        if (command.liveToolTip)
            entry->setToolTip(command.liveToolTip());
    }
}

bool CommandTable::run(int id, int currentView) const
{
    const Command* command = find(id);
    if (!command || !command->run || !isEnabled(*command, currentView))
        return false;
    command->run();
    return true;
}

} // namespace sable
