#include "clientsettings/HomePageSettings.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "platform/ChangeNotice.h"

namespace sable {
namespace {

constexpr int kOldAddressBuffer = 260;
constexpr int kListBuffer = 5200;

} // namespace

HomePageSettings::HomePageSettings(const AppPaths& paths, QString vendorHost)
    : m_ini(paths.settingsFilePath)
    , m_vendorHost(std::move(vendorHost))
    , m_noticePort(ChangeNotice::kHomePagePort)
{ }

QString HomePageSettings::readVendorHost(const Registry& registry)
{
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    const auto host = key ? key->readString(Keys::kVendorHomePageHost, RegBuffer::kPath) : std::nullopt;
    return host && !host->isEmpty() ? *host : kDefaultVendorHost;
}

HomePageSiteList HomePageSettings::open() const
{
    HomePageSiteList list;
    const QString oldAddress
        = m_ini.readString(Keys::kSettingInfo, Keys::kHomePageURL, m_vendorHost, kOldAddressBuffer);
    if (!oldAddress.isEmpty()) {
        list.AddSiteRow(Msg::kHomePageVendorName, QStringLiteral("http://") + oldAddress);
        m_ini.writeString(Keys::kSettingInfo, Keys::kHomePageURL, QString());
    }
    // A fresh installation therefore opens with the vendor's page twice, once from each key; the
    // administrator removes the one not wanted.
    const QString defaultList = QStringLiteral("|%1|%2|").arg(Msg::kHomePageVendorName, m_vendorHost);
    const QString value = m_ini.readString(Keys::kSettingInfo, Keys::kHomePageURL2, defaultList, kListBuffer);
    const HomePageSiteList stored = HomePageSiteList::fromValue(value);
    for (const HomePageSite& site : stored.rows())
        list.AddSiteRow(site.name, site.address);
    return list;
}

NoticeOutcome HomePageSettings::confirm(const HomePageSiteList& list) const
{
    m_ini.writeString(Keys::kSettingInfo, Keys::kHomePageURL2, list.toValue());
    const bool bSent = ChangeNotice::send(ChangeNotice::Kind::ReloadClientSettings, m_noticePort);
    return bSent ? NoticeOutcome::Sent : NoticeOutcome::SendFailed;
}

} // namespace sable
