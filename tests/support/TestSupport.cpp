#include "TestSupport.h"

#include "platform/RegFileBackend.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

TempHome::TempHome()
{
    QDir(m_dir.path()).mkpath(QStringLiteral("home"));
}

QString TempHome::path(const QString& relative) const
{
    return relative.isEmpty() ? m_dir.path() : QDir(m_dir.path()).filePath(relative);
}

sable::Registry TempHome::registry() const
{
    const QDir dir(registryFolder());
    return sable::Registry(std::make_shared<sable::RegFileBackend>(
        dir.filePath(QStringLiteral("HKLM.reg")), dir.filePath(QStringLiteral("HKCU.reg"))));
}

void TempHome::writeFile(const QString& relative, const QByteArray& bytes) const
{
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(bytes);
}

QByteArray TempHome::readFile(const QString& relative) const
{
    QFile in(path(relative));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

PgServer PgServer::fromFixture()
{
    PgServer server;
    QFile file(qEnvironmentVariable("SABLE_TEST_PG_ENV"));
    if (!file.open(QIODevice::ReadOnly))
        return server;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QByteArray value = line.mid(line.indexOf('=') + 1);
        if (line.startsWith("host="))
            server.host = QString::fromUtf8(value);
        else if (line.startsWith("port="))
            server.port = value.toInt();
        else if (line.startsWith("bindir="))
            server.bindir = QString::fromUtf8(value);
    }
    return server;
}

bool PgServer::createDatabase(const QString& name) const
{
    QProcess psql;
    psql.start(bindir + QStringLiteral("/psql"),
        {QStringLiteral("-h"), host, QStringLiteral("-p"), QString::number(port), QStringLiteral("-U"),
            QStringLiteral("postgres"), QStringLiteral("-d"), QStringLiteral("postgres"), QStringLiteral("-q"),
            QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-c"),
            QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(name), QStringLiteral("-c"),
            QStringLiteral("CREATE DATABASE %1 OWNER sable").arg(name)});
    return psql.waitForFinished(30000) && psql.exitStatus() == QProcess::NormalExit && psql.exitCode() == 0;
}

QString PgServer::connectionString(const QString& database, const QString& user, const QString& password) const
{
    return QStringLiteral("Provider=PostgreSQL;Host=%1;Port=%2;Database=%3;User ID=%4;Password=%5")
        .arg(host, QString::number(port), database, user, password);
}

QString PgServer::odbcConnectionString(const QString& database, const QString& password) const
{
    return QStringLiteral("DRIVER={PostgreSQL Unicode};Servername=%1;Port=%2;Database=%3;UID=sable;PWD=%4;CommLog=0;")
        .arg(host, QString::number(port), database, password);
}
