#pragma once

#include "document/RestorePoints.h"
#include "widgets/Prompter.h"

#include <QDialog>

#include <optional>

class QLabel;
class QPushButton;
class QThread;
class QTreeWidget;

namespace sable {

// 파일 ▸ 복원 지점: the restore points of the server folder, newest first, with when, who and what
// each save changed. "열기" reads the chosen point whole and closes the dialog; the list and the
// point are read off the window's thread, so a large chart never freezes it.
class RestorePointDialog final : public QDialog
{
    Q_OBJECT

public:
    RestorePointDialog(RestorePoints points, Prompter prompter, QWidget* parent = nullptr);
    ~RestorePointDialog() override;

    QTreeWidget* list() const { return m_list; }
    QPushButton* openButton() const { return m_open; }
    // The point read by "열기"; set once the dialog is accepted.
    const std::optional<RestorePoint>& chosen() const { return m_chosen; }

Q_SIGNALS:
    void listRead();
    // The chosen point could not be read; the administrator was told why.
    void openFailed(const QString& problem);

private:
    void readList();
    void showList(const std::vector<RestorePointInfo>& points);
    void openChosen();
    void setBusy(const QString& text);
    void finishWork();

    RestorePoints m_points;
    Prompter m_prompter;
    QTreeWidget* m_list = nullptr;
    QLabel* m_state = nullptr;
    QPushButton* m_open = nullptr;
    QThread* m_worker = nullptr;
    std::optional<RestorePoint> m_chosen;
};

} // namespace sable
