#pragma once

#include <QDialog>

class QLineEdit;

namespace sable {

// "사이트 추가": one home page link, a display name and an address. It closes only with an entry
// the stored list can hold: no character of the caller's forbidden set, not both fields empty.
class AddSiteDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit AddSiteDialog(QString forbidden, QWidget* parent = nullptr);

    // Fills the fields for editing an existing link.
    void setSite(const QString& name, const QString& address);

    QString name() const;
    QString address() const;

    void accept() override;

private:
    QString m_forbidden;
    QLineEdit* m_name = nullptr;
    QLineEdit* m_address = nullptr;
};

} // namespace sable
