#pragma once

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace sable {

// The progress window of a chart load: what is being read, how far, and a stop button. It shows
// the reader's progress; it does no work of its own.
class CProgressThread final : public QDialog
{
    Q_OBJECT

public:
    explicit CProgressThread(QWidget* parent = nullptr);

    QString text() const;
    int position() const;
    QPushButton* stopButton() const { return m_stop; }

public Q_SLOTS:
    void setText(const QString& text);
    void setRange(int count);
    void setPosition(int position);

Q_SIGNALS:
    void stopRequested();

protected:
    void reject() override;

private:
    QLabel* m_text;
    QProgressBar* m_bar;
    QPushButton* m_stop;
};

} // namespace sable
