#pragma once

#include <functional>

class QAbstractItemView;

namespace sable::ItemViewKeys {

// Delete runs `remove` while the view has the focus (a cell being edited keeps its own Delete).
void addDeleteKey(QAbstractItemView* view, std::function<void()> remove);

// Shift+F10 opens the view's context menu at its current item, as the menu key and a right click
// do; the view must use Qt::CustomContextMenu.
void addContextMenuKey(QAbstractItemView* view);

} // namespace sable::ItemViewKeys
