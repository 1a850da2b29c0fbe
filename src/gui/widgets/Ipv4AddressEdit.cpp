#include "widgets/Ipv4AddressEdit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>

#include <algorithm>

namespace sable {
namespace {

constexpr int kOctetDigits = 3;

} // namespace

Ipv4AddressEdit::Ipv4AddressEdit(QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    const QRegularExpression octet(QStringLiteral("(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])?"));
    for (int i = 0; i < 4; ++i) {
        if (i > 0)
            layout->addWidget(new QLabel(QStringLiteral("."), this));
        auto* edit = new QLineEdit(this);
        edit->setValidator(new QRegularExpressionValidator(octet, edit));
        edit->setMaxLength(kOctetDigits);
        edit->setAlignment(Qt::AlignCenter);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 12);
        edit->installEventFilter(this);
        connect(edit, &QLineEdit::textEdited, this, [this, i](const QString& text) {
            if (text.size() == kOctetDigits && i < 3)
                focusOctet(i + 1, true);
        });
        layout->addWidget(edit);
        m_octets[i] = edit;
    }
    layout->addStretch();
    setFocusProxy(m_octets[0]);
}

void Ipv4AddressEdit::setAddress(const QString& dotted)
{
    clear();
    const QStringList parts = dotted.split(u'.');
    if (parts.size() != 4)
        return;
    for (int i = 0; i < 4; ++i) {
        int pos = 0;
        QString part = parts[i];
        if (part.isEmpty() || m_octets[i]->validator()->validate(part, pos) != QValidator::Acceptable) {
            clear();
            return;
        }
        m_octets[i]->setText(part);
    }
}

QString Ipv4AddressEdit::address() const
{
    QStringList parts;
    for (const QLineEdit* edit : m_octets)
        parts << QString::number(edit->text().toUInt());
    return parts.join(u'.');
}

bool Ipv4AddressEdit::isBlank() const
{
    return std::all_of(
        m_octets.cbegin(), m_octets.cend(), [](const QLineEdit* edit) { return edit->text().isEmpty(); });
}

void Ipv4AddressEdit::clear()
{
    for (QLineEdit* edit : m_octets)
        edit->clear();
}

bool Ipv4AddressEdit::eventFilter(QObject* watched, QEvent* event)
{
    const int index = octetIndex(watched);
    if (index < 0 || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->text() == QLatin1String(".")) {
        if (index < 3 && !m_octets[index]->text().isEmpty())
            focusOctet(index + 1, true);
        return true;
    }
    if (key->key() == Qt::Key_Backspace && index > 0 && m_octets[index]->cursorPosition() == 0
        && !m_octets[index]->hasSelectedText()) {
        focusOctet(index - 1, false);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Ipv4AddressEdit::focusOctet(int index, bool bSelectAll)
{
    QLineEdit* edit = m_octets[index];
    edit->setFocus();
    if (bSelectAll)
        edit->selectAll();
    else
        edit->end(false);
}

int Ipv4AddressEdit::octetIndex(QObject* watched) const
{
    const auto found = std::find(m_octets.cbegin(), m_octets.cend(), watched);
    return found == m_octets.cend() ? -1 : static_cast<int>(found - m_octets.cbegin());
}

} // namespace sable
