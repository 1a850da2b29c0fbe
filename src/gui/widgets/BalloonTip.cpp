#include "widgets/BalloonTip.h"

#include "widgets/Heading.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

namespace sable {

QPointer<BalloonTip> BalloonTip::s_current;

namespace {

constexpr int kPointer = 10;
constexpr int kRadius = 7;

QIcon iconFor(Balloon::Icon icon, const QStyle* style)
{
    return style->standardIcon(
        icon == Balloon::Icon::Error ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxQuestion);
}

} // namespace

BalloonTip* BalloonTip::show(QWidget* anchor, const QPoint& globalPoint, const Balloon& balloon)
{
    hideCurrent();
    auto* tip = new BalloonTip(anchor, balloon);
    s_current = tip;
    tip->placeAt(globalPoint);
    tip->QWidget::show();
    tip->m_timer.start(balloon.durationMs);
    return tip;
}

BalloonTip* BalloonTip::current()
{
    return s_current.data();
}

void BalloonTip::hideCurrent()
{
    if (s_current)
        s_current->deleteLater();
    s_current = nullptr;
}

BalloonTip::BalloonTip(QWidget* anchor, Balloon balloon)
    : QWidget(anchor ? anchor->window() : nullptr, Qt::ToolTip | Qt::FramelessWindowHint)
    , m_balloon(std::move(balloon))
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("BalloonTip"));
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(12, 10 + kPointer, 12, 10);
    layout->setHorizontalSpacing(8);
    auto* icon = new QLabel(this);
    icon->setPixmap(iconFor(m_balloon.icon, style()).pixmap(24, 24));
    layout->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
    int row = 0;
    if (!m_balloon.title.isEmpty()) {
        layout->addWidget(makeHeading(m_balloon.title, this), row++, 1);
    }
    auto* text = new QLabel(m_balloon.text, this);
    text->setObjectName(QStringLiteral("BalloonText"));
    layout->addWidget(text, row, 1);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QWidget::close);
}

void BalloonTip::placeAt(const QPoint& globalPoint)
{
    adjustSize();
    const QRect screen = (QGuiApplication::screenAt(globalPoint) ? QGuiApplication::screenAt(globalPoint)
                                                                 : QGuiApplication::primaryScreen())
                             ->availableGeometry();
    // Below the point with the pointer up, unless that would leave the screen.
    m_bPointerUp = globalPoint.y() + height() <= screen.bottom();
    auto* layout = static_cast<QGridLayout*>(this->layout());
    layout->setContentsMargins(12, 10 + (m_bPointerUp ? kPointer : 0), 12, 10 + (m_bPointerUp ? 0 : kPointer));
    adjustSize();
    int x = std::clamp(globalPoint.x() - 20, screen.left(), std::max(screen.left(), screen.right() - width()));
    m_pointerX = std::clamp(globalPoint.x() - x, kRadius + kPointer, width() - kRadius - kPointer);
    move(x, m_bPointerUp ? globalPoint.y() : globalPoint.y() - height());
}

void BalloonTip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = QRectF(rect()).adjusted(
        0.5, m_bPointerUp ? kPointer + 0.5 : 0.5, -0.5, m_bPointerUp ? -0.5 : -kPointer - 0.5);
    QPainterPath path;
    path.addRoundedRect(body, kRadius, kRadius);
    QPolygonF pointer;
    const qreal baseY = m_bPointerUp ? body.top() + 1 : body.bottom() - 1;
    const qreal tipY = m_bPointerUp ? 0.5 : height() - 0.5;
    pointer << QPointF(m_pointerX - kPointer, baseY) << QPointF(m_pointerX, tipY)
            << QPointF(m_pointerX + kPointer * 0.2, baseY);
    path.addPolygon(pointer);
    path = path.simplified();
    painter.setPen(QPen(QColor(0x7f, 0x8c, 0x99), 1));
    painter.setBrush(QColor(0xff, 0xfd, 0xe8));
    painter.drawPath(path);
}

void BalloonTip::mousePressEvent(QMouseEvent*)
{
    close();
}

} // namespace sable
