#include "SupervisorFixture.h"

#include "platform/SupervisorServiceBackend.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

SupervisorFixture SupervisorFixture::fromEnvironment()
{
    SupervisorFixture fixture;
    QFile file(qEnvironmentVariable("SABLE_TEST_SUPERVISOR_ENV"));
    if (!file.open(QIODevice::ReadOnly))
        return fixture;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QString value = QString::fromUtf8(line.mid(line.indexOf('=') + 1));
        if (line.startsWith("url="))
            fixture.url = value;
        else if (line.startsWith("user="))
            fixture.user = value;
        else if (line.startsWith("password="))
            fixture.password = value;
        else if (line.startsWith("dir="))
            fixture.folder = value;
        else if (line.startsWith("datagrams="))
            fixture.datagramLog = value;
    }
    return fixture;
}

sable::SupervisorClient SupervisorFixture::client() const
{
    return sable::SupervisorClient({QUrl(url), user, password});
}

sable::ServiceManagerSettings SupervisorFixture::settings() const
{
    sable::ServiceManagerSettings settings;
    settings.kind = sable::ServiceManagerSettings::Kind::Supervisord;
    settings.supervisorUrl = url;
    settings.supervisorUser = user;
    settings.supervisorPassword = password;
    return settings;
}

std::shared_ptr<sable::ServiceBackend> SupervisorFixture::backend() const
{
    return settings().createBackend();
}

bool SupervisorFixture::stopAll() const
{
    const auto result = client().call(QStringLiteral("supervisor.stopAllProcesses"), {true});
    return result.kind == sable::SupervisorClient::Result::Kind::Value;
}

QString SupervisorFixture::stateOf(const QString& name) const
{
    const auto result = client().call(QStringLiteral("supervisor.getProcessInfo"), {name});
    return result.value.toMap().value(QStringLiteral("statename")).toString();
}

QStringList SupervisorFixture::logged(const QString& verb, qint64 offset) const
{
    QFile log(QDir(folder).filePath(QStringLiteral("supervisord.log")));
    if (!log.open(QIODevice::ReadOnly) || !log.seek(offset))
        return {};
    const QRegularExpression pattern(QStringLiteral(" %1: '?([A-Za-z_0-9]+)").arg(verb));
    QStringList names;
    for (const QByteArray& line : log.readAll().split('\n')) {
        const auto match = pattern.match(QString::fromUtf8(line));
        if (match.hasMatch())
            names << match.captured(1);
    }
    return names;
}

qint64 SupervisorFixture::logSize() const
{
    return QFileInfo(QDir(folder).filePath(QStringLiteral("supervisord.log"))).size();
}
