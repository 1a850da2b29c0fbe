#include "mainwindow/WindowLayout.h"

#include "SettingsKeys.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QMainWindow>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>

namespace sable {
namespace {

// Qt's saved states are a few hundred bytes; they are kept as base64 text in string values.
constexpr int kStateBuffer = 8192;
constexpr QSize kFirstStartSize(1180, 760);

QString partName(const QString& place, const QWidget& part)
{
    return place + u'/' + part.objectName();
}

// The parts of a page that keep a layout: named splitters and named lists.
template <typename T>
QList<T*> namedParts(const QWidget& page)
{
    QList<T*> parts;
    for (T* part : page.findChildren<T*>()) {
        if (!part->objectName().isEmpty())
            parts << part;
    }
    return parts;
}

} // namespace

WindowLayout::WindowLayout(Registry registry)
    : m_registry(std::move(registry))
{ }

std::optional<QByteArray> WindowLayout::readBytes(const QString& name) const
{
    const auto key = m_registry.openKey(RegRoot::CurrentUser, Keys::kSableManagerLayout);
    const auto text = key ? key->readString(name, kStateBuffer) : std::nullopt;
    if (!text || text->isEmpty())
        return std::nullopt;
    return QByteArray::fromBase64(text->toLatin1());
}

void WindowLayout::writeBytes(const QString& name, const QByteArray& bytes) const
{
    if (const auto key = m_registry.createKey(RegRoot::CurrentUser, Keys::kSableManagerLayout))
        key->writeString(name, QString::fromLatin1(bytes.toBase64()));
}

bool WindowLayout::restoreWindow(QMainWindow& window) const
{
    const auto geometry = readBytes(Keys::kLayoutGeometry);
    if (!geometry || !window.restoreGeometry(*geometry))
        return false;
    if (const auto bars = readBytes(Keys::kLayoutBars))
        window.restoreState(*bars);
    const auto key = m_registry.openKey(RegRoot::CurrentUser, Keys::kSableManagerLayout);
    if (const auto statusBar = key ? key->readDword(Keys::kLayoutStatusBar) : std::nullopt)
        window.statusBar()->setVisible(*statusBar != 0);
    return true;
}

void WindowLayout::saveWindow(const QMainWindow& window) const
{
    // Together: the bars' state is only restored with the geometry it was saved with.
    if (const auto key = m_registry.createKey(RegRoot::CurrentUser, Keys::kSableManagerLayout)) {
        key->writeValues(RegistryValues()
                             .string(Keys::kLayoutGeometry, QString::fromLatin1(window.saveGeometry().toBase64()))
                             .string(Keys::kLayoutBars, QString::fromLatin1(window.saveState().toBase64()))
                             .dword(Keys::kLayoutStatusBar, window.statusBar()->isVisibleTo(&window) ? 1 : 0));
    }
}

void WindowLayout::restoreParts(QWidget& page) const
{
    for (QSplitter* splitter : namedParts<QSplitter>(page))
        restoreSplitter(*splitter, page.objectName());
    for (QTableView* list : namedParts<QTableView>(page)) {
        if (const auto state = readBytes(Keys::kLayoutColumns.arg(partName(page.objectName(), *list))))
            list->horizontalHeader()->restoreState(*state);
    }
}

void WindowLayout::saveParts(const QWidget& page) const
{
    for (const QSplitter* splitter : namedParts<QSplitter>(page))
        saveSplitter(*splitter, page.objectName());
    for (const QTableView* list : namedParts<QTableView>(page))
        writeBytes(Keys::kLayoutColumns.arg(partName(page.objectName(), *list)), list->horizontalHeader()->saveState());
}

void WindowLayout::restoreSplitter(QSplitter& splitter, const QString& place) const
{
    if (const auto state = readBytes(Keys::kLayoutSplitter.arg(partName(place, splitter))))
        splitter.restoreState(*state);
}

void WindowLayout::saveSplitter(const QSplitter& splitter, const QString& place) const
{
    writeBytes(Keys::kLayoutSplitter.arg(partName(place, splitter)), splitter.saveState());
}

std::optional<int> WindowLayout::lastView() const
{
    const auto key = m_registry.openKey(RegRoot::CurrentUser, Keys::kSableManagerLayout);
    const auto view = key ? key->readDword(Keys::kLayoutLastView) : std::nullopt;
    return view ? std::optional<int>(static_cast<int>(*view)) : std::nullopt;
}

void WindowLayout::saveLastView(int view) const
{
    if (const auto key = m_registry.createKey(RegRoot::CurrentUser, Keys::kSableManagerLayout))
        key->writeDword(Keys::kLayoutLastView, static_cast<quint32>(view));
}

void WindowLayout::applyFirstStartSize(QMainWindow& window)
{
    QSize size = kFirstStartSize;
    if (const QScreen* screen = window.screen() ? window.screen() : QGuiApplication::primaryScreen()) {
        const QRect available = screen->availableGeometry();
        size = size.boundedTo(available.size() * 9 / 10);
        window.resize(size);
        window.move(available.center() - QPoint(size.width() / 2, size.height() / 2));
        return;
    }
    window.resize(size);
}

} // namespace sable
