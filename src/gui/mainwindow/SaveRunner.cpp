#include "mainwindow/SaveRunner.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"

#include <QApplication>
#include <QProgressDialog>
#include <QThread>

namespace sable {

SaveRunner::SaveRunner(CSableManagerDoc& doc, IniFile settings, QWidget* window)
    : QObject(window)
    , m_doc(doc)
    , m_settings(std::move(settings))
    , m_window(window)
{ }

SaveRunner::~SaveRunner()
{
    if (m_thread)
        m_thread->wait();
}

void SaveRunner::start(const ChartSave::Collaborators& with)
{
    if (m_thread)
        return;
    if (const auto stopped = ChartSave::prepare(m_doc, with)) {
        Q_EMIT finished(*stopped);
        return;
    }
    m_with = with;
    m_note = new QProgressDialog(Msg::kSaving, QString(), 0, 0, m_window);
    m_note->setWindowModality(Qt::WindowModal);
    m_note->setMinimumDuration(0);
    m_note->setWindowTitle(Msg::kAppTitle);
    m_note->show();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    m_written = {};
    m_thread = QThread::create([this] { m_written = ChartSave::write(m_doc, m_settings, m_with); });
    connect(m_thread, &QThread::finished, this, [this] {
        m_thread->deleteLater();
        m_thread = nullptr;
        QApplication::restoreOverrideCursor();
        if (m_note)
            m_note->deleteLater();
        Q_EMIT finished(ChartSave::finish(m_doc, m_with, m_written));
    });
    m_thread->start();
}

} // namespace sable
