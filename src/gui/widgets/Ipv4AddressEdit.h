#pragma once

#include <QWidget>

#include <array>

class QLineEdit;

namespace sable {

// An IPv4 address typed as four octets of 0 to 255. Typing a dot or a third digit moves on to the
// next octet, backspace in an empty octet moves back; an octet left blank counts as 0.
class Ipv4AddressEdit final : public QWidget
{
    Q_OBJECT

public:
    explicit Ipv4AddressEdit(QWidget* parent = nullptr);

    // Shows a dotted address of four decimal octets; any other text leaves the field blank.
    void setAddress(const QString& dotted);
    // The four octets joined by ".", blanks as 0: an untouched field gives 0.0.0.0.
    QString address() const;
    bool isBlank() const;
    void clear();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void focusOctet(int index, bool bSelectAll);
    int octetIndex(QObject* watched) const;

    std::array<QLineEdit*, 4> m_octets {};
};

} // namespace sable
