#pragma once

#include "clientsettings/HomePageSettings.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;

namespace sable {

// "홈페이지 설정": the links of the clients' home page button, in the order the clients offer
// them. Opening it carries an address of the older format into the list (see HomePageSettings);
// accepting only closes it, and the caller confirms sites() with HomePageSettings::confirm.
class HomePageDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit HomePageDialog(const HomePageSettings& settings, QWidget* parent = nullptr);

    const HomePageSiteList& sites() const { return m_sites; }

    void addSite();
    void editSite();
    void removeSites();
    void moveSite(int step);

private:
    QList<qsizetype> selectedRows() const;
    void showSites(const QList<qsizetype>& selection);
    void updateButtons();

    HomePageSiteList m_sites;
    QTreeWidget* m_list = nullptr;
    QPushButton* m_add = nullptr;
    QPushButton* m_edit = nullptr;
    QPushButton* m_remove = nullptr;
    QPushButton* m_up = nullptr;
    QPushButton* m_down = nullptr;
};

} // namespace sable
