#pragma once

#include "clientsettings/NoticeOutcome.h"
#include "platform/AppPaths.h"
#include "platform/IniFile.h"

#include <QString>

namespace sable {

// What the messenger clients show at the top of their login and main windows.
struct LogoChoice
{
    bool bDefaultIcon = true;
    QString iconPath;
    QString caption;

    bool operator==(const LogoChoice&) const = default;
};

// The logo and caption keys of [SettingInfo] in Serverinfo.ini, the icon files the clients may be
// given, and the confirm that raises the change counter and tells the running server.
class LogoSettings
{
public:
    // Clients download the icon, so anything bigger is refused (a little under the 10K the
    // message mentions).
    static constexpr qint64 kMaxIconBytes = 9900;
    // Bytes of the caption in the Korean code page: 11 Hangul syllables.
    static constexpr int kMaxCaptionBytes = 22;

    enum class IconCheck
    {
        Accepted,
        CannotOpen,
        TooLarge,
        NotAnIcon,
    };

    explicit LogoSettings(const AppPaths& paths);

    LogoChoice read() const;

    // The folder the administrator keeps icon files in, created when missing.
    QString iconFolder() const;

    // Whether `path` may become the clients' icon.
    static IconCheck checkIconFile(const QString& path);

    // Writes the choice (the icon path only for a custom icon, so switching back to the default
    // keeps the earlier file), raises the change counter, and sends the notice.
    NoticeOutcome confirm(const LogoChoice& choice) const;

    // The UDP port of the notice; the server's own port unless a test listens elsewhere.
    void setNoticePort(quint16 port) { m_noticePort = port; }

private:
    AppPaths m_paths;
    IniFile m_ini;
    quint16 m_noticePort;
};

} // namespace sable
