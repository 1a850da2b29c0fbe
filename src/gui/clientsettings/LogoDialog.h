#pragma once

#include "clientsettings/LogoSettings.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace sable {

// "로고 설정": the clients' icon (default or a file of the administrator's) and caption, with a
// preview of the title bar they make. Accepting only closes the dialog; the caller confirms the
// choice with LogoSettings::confirm.
class LogoDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit LogoDialog(const LogoSettings& settings, QWidget* parent = nullptr);

    LogoChoice choice() const;

    // Takes `path` as the icon when it is a readable icon file within the size bound; otherwise
    // tells the user why and keeps the earlier path.
    void chooseIconFile(const QString& path);

private:
    void browse();
    void applyRadioChoice();
    void updatePreview();
    QWidget* createPreview();

    const LogoSettings& m_settings;
    QRadioButton* m_defaultIcon = nullptr;
    QRadioButton* m_userIcon = nullptr;
    QLineEdit* m_iconPath = nullptr;
    QPushButton* m_browse = nullptr;
    QLineEdit* m_caption = nullptr;
    QLabel* m_previewIcon = nullptr;
    QLabel* m_previewCaption = nullptr;
};

} // namespace sable
