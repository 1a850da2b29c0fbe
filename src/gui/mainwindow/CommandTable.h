#pragma once

#include <QHash>
#include <QIcon>
#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>
#include <vector>

class QAction;
class QMenuBar;
class QObject;
class QToolBar;

namespace sable {

// The menus of the menu bar, in their order; None for a command shown only on the tool bar.
enum class MenuId
{
    File,
    Edit,
    View,
    Server,
    ServerSettings,
    Help,
    None,
};

// One command of the console, declared once: where it shows, what it says, when it can run and
// what it does.
struct Command
{
    int id = 0;
    MenuId menu = MenuId::None;
    QString text {}; // the menu entry, with its mnemonic
    QList<QKeySequence> shortcuts {};
    QIcon icon {};
    QString toolTip {};
    QString statusTip {}; // shown in the status bar while the entry is under the pointer
    // The views in which the command applies; in any other view it is disabled, and a menu entry is
    // hidden as well, so that every menu keeps one entry per mnemonic in every view. Empty: every view.
    QList<int> views {};
    std::function<void()> run {};
    std::function<bool()> isEnabled {}; // a rule besides the views; empty: always
    std::function<bool()> isChecked {}; // set for a command with a check mark
    std::function<QString()> liveText {}; // set when the entry's text follows the state
    bool bSeparatorBefore = false; // in its menu
    int toolBarGroup = 0; // 0: not on the tool bar; groups are parted by separators
    // The tool button's text when it must not follow the entry's (a button that changed its width
    // would move the ones beside it under the pointer); empty: the entry's text.
    QString toolText {};
    std::function<QString()> liveToolTip {}; // set when the tool tip follows the state
};

// The commands of a window and the actions made from them: the menu bar, the tool bar, the
// enabling rules and the routing of a command to its handler all come from the one declaration.
class CommandTable
{
public:
    // `trigger` runs when an entry or a shortcut is chosen; the owner decides what follows a command.
    CommandTable(QObject* owner, std::function<void(int id)> trigger);

    void add(Command command);
    const Command* find(int id) const;
    QAction* action(int id) const { return m_actions.value(id); }
    const std::vector<Command>& commands() const { return m_commands; }

    void fillMenuBar(QMenuBar* bar) const;
    void fillToolBar(QToolBar* bar) const;
    // Enables, checks and names every action for `currentView`.
    void updateStates(int currentView) const;
    // Runs the command as its entry would; false, and nothing done, when it is unknown or disabled.
    bool run(int id, int currentView) const;

    static QString menuTitle(MenuId menu);

private:
    bool isEnabled(const Command& command, int currentView) const;

    QObject* m_owner;
    std::function<void(int id)> m_trigger;
    std::vector<Command> m_commands;
    QHash<int, QAction*> m_actions;
};

} // namespace sable
