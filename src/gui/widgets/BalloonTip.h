#pragma once

#include "document/Balloon.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace sable {

// A balloon with a pointer at the place it is about: an error icon for a refused edit, a question
// icon and a title for a hint. It closes by itself after its time, on a click, or when another
// balloon replaces it.
class BalloonTip final : public QWidget
{
    Q_OBJECT

public:
    // Shows `balloon` pointing at `globalPoint`, over `anchor`'s window.
    static BalloonTip* show(QWidget* anchor, const QPoint& globalPoint, const Balloon& balloon);
    // The balloon on screen, if any.
    static BalloonTip* current();
    static void hideCurrent();

    const Balloon& balloon() const { return m_balloon; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    BalloonTip(QWidget* anchor, Balloon balloon);
    void placeAt(const QPoint& globalPoint);

    Balloon m_balloon;
    QTimer m_timer;
    bool m_bPointerUp = true;
    int m_pointerX = 20;
    static QPointer<BalloonTip> s_current;
};

} // namespace sable
