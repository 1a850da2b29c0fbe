#pragma once

#include <QString>
#include <QUrl>

namespace sable {

class Registry;

// The product's web addresses: online help, home page and the download of the upgrade program.
// They are settings (HKLM SOFTWARE\Halvex\SableManager "HelpURL", "ProductHomeURL", "UpgradeURL");
// a missing or malformed one falls back to a page on the vendor's host ("VendorHomePageHost").
struct ProductLinks
{
    QUrl help;
    QUrl home;
    QUrl upgradeProgram;

    static ProductLinks read(const Registry& registry);
};

} // namespace sable
