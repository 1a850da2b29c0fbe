#pragma once

#include "clientsettings/HomePageSiteList.h"
#include "clientsettings/NoticeOutcome.h"
#include "platform/AppPaths.h"
#include "platform/IniFile.h"
#include "platform/Registry.h"

#include <QString>

namespace sable {

// The home page links of [SettingInfo] in Serverinfo.ini: the single address of the older format
// (HomePageURL), carried into the list once, and the list itself (HomePageURL2).
class HomePageSettings
{
public:
    // What both keys fall back to when missing: the vendor's site, unless HKLM
    // SOFTWARE\Halvex\SableManager "VendorHomePageHost" names another host.
    static inline const QString kDefaultVendorHost = QStringLiteral("www.halvex.co.kr");

    HomePageSettings(const AppPaths& paths, QString vendorHost);

    // The vendor's home page host as configured on this machine, else kDefaultVendorHost.
    static QString readVendorHost(const Registry& registry);

    // The list the dialog opens with. An address of the older format is moved into the list and
    // its key emptied at once, so it is carried over only once, even if the dialog is cancelled.
    HomePageSiteList open() const;

    // Writes the list and tells the running server.
    NoticeOutcome confirm(const HomePageSiteList& list) const;

    void setNoticePort(quint16 port) { m_noticePort = port; }

private:
    IniFile m_ini;
    QString m_vendorHost;
    quint16 m_noticePort;
};

} // namespace sable
