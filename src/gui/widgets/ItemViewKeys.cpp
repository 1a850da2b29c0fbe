#include "widgets/ItemViewKeys.h"

#include <QAbstractItemView>
#include <QAction>

namespace sable::ItemViewKeys {
namespace {

QAction* viewKey(QAbstractItemView* view, const QKeySequence& key)
{
    auto* action = new QAction(view);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    view->addAction(action);
    return action;
}

} // namespace

void addDeleteKey(QAbstractItemView* view, std::function<void()> remove)
{
    QObject::connect(viewKey(view, QKeySequence::Delete), &QAction::triggered, view, std::move(remove));
}

void addContextMenuKey(QAbstractItemView* view)
{
    QObject::connect(viewKey(view, QKeySequence(Qt::SHIFT | Qt::Key_F10)), &QAction::triggered, view, [view] {
        const QModelIndex current = view->currentIndex();
        const QRect item = current.isValid() ? view->visualRect(current) : QRect();
        // Where a right click on the item would be; the viewport's corner when nothing is current.
        const QPoint at
            = item.isValid() ? QPoint(item.left() + std::min(item.width() / 2, 24), item.center().y()) : QPoint(4, 4);
        Q_EMIT view->customContextMenuRequested(at);
    });
}

} // namespace sable::ItemViewKeys
