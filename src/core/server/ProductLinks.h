#pragma once

#include <QString>
#include <QUrl>

namespace sable {

class Registry;

// The product's web addresses: online help, home page and the download of the upgrade program.
// They are settings (values under HKLM SOFTWARE\Halvex\SableManager) with defaults of their own.
struct ProductLinks
{
    QUrl help;
    QUrl home;
    QUrl upgradeProgram;

    static ProductLinks read(const Registry& registry);
};

} // namespace sable
