#pragma once

#include "filebox/FileBoxPermissionView.h"

class QLabel;

namespace sable {

class ChartSourcePane;
class FolderPane;
class FolderPermissionModel;

// "폴더별 관리": the folder tree of the home folder, the permissions on the chosen folder, and the
// chart from which departments and users are dragged (or added by the context menu) onto them.
class CSableboxFolderFormView final : public FileBoxPermissionView
{
    Q_OBJECT

public:
    CSableboxFolderFormView(CSableManagerDoc& doc, HomeSource home, QWidget* parent = nullptr);

    FolderPane* folders() const { return m_folders; }
    ChartSourcePane* chart() const { return m_chart; }
    FolderPermissionModel* permissionModel() const { return m_model; }

    void refreshHome() override;
    int deleteSelectedPermissions() override;
    // "[폴더]에 권한 추가": gives the departments and users selected in the chart "읽기" on the folder.
    int addSelectedGrantees();

private:
    void onFolderChanged(const QString& folderPath);

    FolderPane* m_folders;
    FolderPermissionModel* m_model;
    ChartSourcePane* m_chart;
    QLabel* m_folderLabel;
};

} // namespace sable
