#pragma once

#include <QDialog>

class QCheckBox;

namespace sable {

class Ipv4AddressEdit;

// "파일 서버 추가/편집": one file session server's address and whether the clients use it. Any
// address is accepted, 0.0.0.0 of an untouched field included.
class SessionServerEditDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit SessionServerEditDialog(QWidget* parent = nullptr);

    // An empty address leaves the field blank; other text shows as it normalises.
    void setEntry(const QString& address, bool bEnabled);

    QString address() const;
    bool isServerEnabled() const;

private:
    Ipv4AddressEdit* m_address = nullptr;
    QCheckBox* m_enabled = nullptr;
};

} // namespace sable
