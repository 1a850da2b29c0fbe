#pragma once

#include "filebox/FileBoxPermissionView.h"

class QLabel;

namespace sable {

class ChartSourcePane;
class FolderPane;
class GranteePermissionModel;

// "사용자별 관리": the chart, the folders on which the chosen department or user holds a permission
// (for a user also those received through their departments, marked and not editable here), and
// the folder tree from which folders are dragged (or added by the context menu) onto the list.
class CSableboxUserFormView final : public FileBoxPermissionView
{
    Q_OBJECT

public:
    CSableboxUserFormView(CSableManagerDoc& doc, HomeSource home, QWidget* parent = nullptr);

    ChartSourcePane* chart() const { return m_chart; }
    FolderPane* folders() const { return m_folders; }
    GranteePermissionModel* permissionModel() const { return m_model; }

    void refreshHome() override;
    int deleteSelectedPermissions() override;
    // "[대상]에 권한 추가": gives the chosen department or user "읽기" on the selected folders.
    int addSelectedFolders();

private:
    void onGranteeChanged();

    ChartSourcePane* m_chart;
    GranteePermissionModel* m_model;
    FolderPane* m_folders;
    QLabel* m_granteeLabel;
};

} // namespace sable
