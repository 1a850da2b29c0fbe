#include "SlapdFixture.h"

#include <QFile>
#include <QProcess>
#include <QUuid>

SlapdServer SlapdServer::fromFixture()
{
    SlapdServer server;
    QFile file(qEnvironmentVariable("SABLE_TEST_SLAPD_ENV"));
    if (!file.open(QIODevice::ReadOnly))
        return server;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const qsizetype at = line.indexOf('=');
        const QByteArray name = line.left(at);
        const QString value = QString::fromUtf8(line.mid(at + 1));
        if (name == "url")
            server.url = value;
        else if (name == "ldapsUrl")
            server.ldapsUrl = value;
        else if (name == "base")
            server.base = value;
        else if (name == "scratch")
            server.scratch = value;
        else if (name == "admin")
            server.admin = value;
        else if (name == "adminPassword")
            server.adminPassword = value;
        else if (name == "ca")
            server.ca = value;
        else if (name == "otherCa")
            server.otherCa = value;
    }
    return server;
}

sable::DirectorySettings SlapdServer::settings() const
{
    sable::DirectorySettings settings;
    settings.applyPreset(sable::DirectoryPreset::OpenLdap);
    settings.url = url;
    settings.bindDn = QStringLiteral("cn=reader,") + base;
    settings.password = QStringLiteral("reader-secret");
    settings.baseDn = base;
    return settings;
}

bool SlapdServer::modify(const QString& ldif) const
{
    QProcess tool;
    tool.start(QStringLiteral("ldapmodify"),
        {QStringLiteral("-x"), QStringLiteral("-H"), url, QStringLiteral("-D"), admin, QStringLiteral("-w"),
            adminPassword});
    if (!tool.waitForStarted(10000))
        return false;
    tool.write(ldif.toUtf8());
    tool.closeWriteChannel();
    if (!tool.waitForFinished(30000) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0) {
        qWarning("ldapmodify: %s", tool.readAllStandardError().constData());
        return false;
    }
    return true;
}

QString SlapdServer::addUnit(const QString& name, const QStringList& logins) const
{
    const QString unit
        = QStringLiteral("ou=%1-%2,%3").arg(name, QUuid::createUuid().toString(QUuid::Id128).left(8), scratch);
    QString ldif = QStringLiteral("dn: %1\nchangetype: add\nobjectClass: organizationalUnit\nou: %2\n\n")
                       .arg(unit, unit.section(u',', 0, 0).mid(3));
    for (qsizetype i = 0; i < logins.size(); ++i) {
        ldif += QStringLiteral("dn: %1\nchangetype: add\nobjectClass: inetOrgPerson\nobjectClass: sableTestAccount\n"
                               "uid: %2\ncn: 사용자 %3\nsn: 사용자\ntitle: 사원\nuserAccountControl: 512\n\n")
                    .arg(userDn(unit, logins[i]), logins[i])
                    .arg(i + 1);
    }
    return modify(ldif) ? unit : QString();
}

QString SlapdServer::userDn(const QString& unit, const QString& login)
{
    return QStringLiteral("uid=%1,%2").arg(login, unit);
}
