#pragma once

#include "filebox/FileBoxServerSettings.h"
#include "widgets/Prompter.h"

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace sable {

// "SableBox 설정": the file-box server's home folder and its passive-mode address and port range.
// Opening completes the registry with the defaults of missing values and shows the stored values as
// they are; OK writes the four values unless a port is no port number or the range is empty or
// reversed, which is refused with a message and the dialog left as typed.
class SableBoxSettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit SableBoxSettingsDialog(FileBoxServerSettings settings, QWidget* parent = nullptr);

    void setPrompter(Prompter prompter) { m_prompter = std::move(prompter); }
    void setBalloonHelp(bool on) { m_bBalloonHelp = on; }

    FileBoxServerValues values() const;
    // Takes `path` as the home folder, as choosing it in the folder browser does.
    void chooseHomeFolder(const QString& path);

    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void browse();
    QWidget* createHomeGroup();
    QWidget* createPassiveGroup();

    FileBoxServerSettings m_settings;
    Prompter m_prompter = Prompter::messageBoxes();
    bool m_bBalloonHelp = true;
    QLineEdit* m_home = nullptr;
    QPushButton* m_browse = nullptr;
    QLineEdit* m_firstPort = nullptr;
    QLineEdit* m_lastPort = nullptr;
    QLineEdit* m_address = nullptr;
};

} // namespace sable
