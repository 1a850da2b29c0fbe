#include "clientsettings/LogoSettings.h"

#include "SettingsKeys.h"
#include "platform/ChangeNotice.h"
#include "platform/LeadingNumber.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

namespace sable {
namespace {

constexpr int kValueBuffer = 260;

// An icon file starts with a zero word, the type word 1 and the number of images, followed by one
// 16-byte directory entry per image; the first entry is enough to tell an icon from other files.
constexpr qint64 kIconHeaderBytes = 6;
constexpr qint64 kIconEntryBytes = 16;

bool hasIconHeader(const QByteArray& head)
{
    if (head.size() < kIconHeaderBytes + kIconEntryBytes)
        return false;
    const auto word = [&head](int offset) { return qFromLittleEndian<quint16>(head.constData() + offset); };
    return word(0) == 0 && word(2) == 1 && word(4) >= 1;
}

} // namespace

LogoSettings::LogoSettings(const AppPaths& paths)
    : m_paths(paths)
    , m_ini(paths.settingsFilePath)
    , m_noticePort(ChangeNotice::kLogoPort)
{ }

LogoChoice LogoSettings::read() const
{
    LogoChoice choice;
    const QString defaultIcon
        = m_ini.readString(Keys::kSettingInfo, Keys::kDefaultIcon, QStringLiteral("1"), kValueBuffer);
    choice.bDefaultIcon = LeadingNumber::decimal(defaultIcon) == 1;
    choice.iconPath = m_ini.readString(Keys::kSettingInfo, Keys::kUserDefineIconPath, QString(), kValueBuffer);
    choice.caption = m_ini.readString(Keys::kSettingInfo, Keys::kCaptionBarName, QString(), kValueBuffer);
    return choice;
}

QString LogoSettings::iconFolder() const
{
    const QString folder = QDir(m_paths.programFolder).filePath(QStringLiteral("ico"));
    QDir().mkpath(folder);
    return QDir::toNativeSeparators(folder);
}

LogoSettings::IconCheck LogoSettings::checkIconFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return IconCheck::CannotOpen;
    if (file.size() > kMaxIconBytes)
        return IconCheck::TooLarge;
    if (!hasIconHeader(file.read(kIconHeaderBytes + kIconEntryBytes)))
        return IconCheck::NotAnIcon;
    return IconCheck::Accepted;
}

NoticeOutcome LogoSettings::confirm(const LogoChoice& choice) const
{
    // The order is the one the server's own tools have always written in, in one step: a client
    // that reloads meanwhile never sees the new version with the old icon.
    QList<std::pair<QString, QString>> values;
    if (!choice.bDefaultIcon)
        values.append({Keys::kUserDefineIconPath, choice.iconPath});
    const qint64 version = qMax(0, m_ini.readInt(Keys::kSettingInfo, Keys::kLogoVersionRead, 0));
    values.append({Keys::kVersion, QString::number(version + 1)});
    values.append({Keys::kDefaultIcon, choice.bDefaultIcon ? QStringLiteral("1") : QStringLiteral("0")});
    values.append({Keys::kCaptionBarName, choice.caption});
    m_ini.writeStrings(Keys::kSettingInfo, values);
    const bool bSent = ChangeNotice::send(ChangeNotice::Kind::ReloadClientSettings, m_noticePort);
    return bSent ? NoticeOutcome::Sent : NoticeOutcome::SendFailed;
}

} // namespace sable
