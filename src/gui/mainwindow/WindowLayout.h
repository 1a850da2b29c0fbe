#pragma once

#include "platform/Registry.h"

#include <optional>

class QMainWindow;
class QSplitter;
class QWidget;

namespace sable {

// The console's layout as each administrator left it, kept in the HKCU store (so it moves with the
// administrator, not with the server): the window's size, position and maximised state, the tool
// bar and status bar, the last view, and the splitters and list columns of each view. Splitters and
// lists are found by their object names inside a named page, so that a page adds its own parts by
// naming them.
class WindowLayout final
{
public:
    explicit WindowLayout(Registry registry);

    // The window as it was left; false, and the window left as it is, when nothing is stored.
    bool restoreWindow(QMainWindow& window) const;
    void saveWindow(const QMainWindow& window) const;

    // The splitters and list columns of a page (a widget with an object name).
    void restoreParts(QWidget& page) const;
    void saveParts(const QWidget& page) const;
    // One named splitter of the part of the window named `place`.
    void restoreSplitter(QSplitter& splitter, const QString& place) const;
    void saveSplitter(const QSplitter& splitter, const QString& place) const;

    std::optional<int> lastView() const;
    void saveLastView(int view) const;

    // The size of a first start: wide enough for the chart editor's tree and the member list's main
    // columns, and no larger than most of the screen.
    static void applyFirstStartSize(QMainWindow& window);

private:
    std::optional<QByteArray> readBytes(const QString& name) const;
    void writeBytes(const QString& name, const QByteArray& bytes) const;

    Registry m_registry;
};

} // namespace sable
