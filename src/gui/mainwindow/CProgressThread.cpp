#include "mainwindow/CProgressThread.h"

#include "Messages.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace sable {

CProgressThread::CProgressThread(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_text(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_stop(new QPushButton(Msg::kStopLoading, this))
{
    setWindowTitle(Msg::kAppTitle);
    setModal(true);
    m_text->setMinimumWidth(320);
    m_bar->setRange(0, 0);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(m_stop, 0, Qt::AlignRight);
    connect(m_stop, &QPushButton::clicked, this, &CProgressThread::stopRequested);
}

QString CProgressThread::text() const
{
    return m_text->text();
}

int CProgressThread::position() const
{
    return m_bar->value();
}

void CProgressThread::setText(const QString& text)
{
    m_text->setText(text);
}

void CProgressThread::setRange(int count)
{
    m_bar->setRange(0, std::max(count, 1));
}

void CProgressThread::setPosition(int position)
{
    m_bar->setValue(position);
}

void CProgressThread::reject()
{
    // Escape and the close box stop the load, like the button.
    Q_EMIT stopRequested();
}

} // namespace sable
