#include "TestSupport.h"

#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "platform/RegFileBackend.h"

#include <QSqlRecord>

using sable::DbConnection;

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

QString freshDatabase(const QString& kind, const TempHome& home, const PgServer& pg, bool withTables)
{
    QString text;
    if (kind.startsWith(QLatin1String("sqlite"))) {
        static int counter = 0;
        const QString file = home.path(QStringLiteral("%1-%2.db").arg(kind).arg(++counter));
        DbConnection create;
        if (!create.open(sable::sqliteConnectionString(file) + QStringLiteral(";FailIfMissing=False")))
            return {};
        text = kind == QLatin1String("sqlite") ? sable::sqliteConnectionString(file)
                                               : QStringLiteral("DRIVER=SQLite3;Database=%1;").arg(file);
    } else {
        static int counter = 0;
        const QString database = QStringLiteral("t_%1_%2_%3")
                                     .arg(QString(kind).replace(u'-', u'_'))
                                     .arg(QCoreApplication::applicationPid())
                                     .arg(++counter);
        if (!pg.createDatabase(database))
            return {};
        text = kind == QLatin1String("postgresql") ? pg.connectionString(database) : pg.odbcConnectionString(database);
    }
    if (withTables) {
        DbConnection db;
        bool ok = false;
        if (!db.open(text))
            return {};
        sable::DbSchema::createMissingTables(db, &ok);
        if (!ok)
            return {};
    }
    return text;
}

QStringList tableDump(const QString& connectionString)
{
    DbConnection db;
    QStringList rows;
    if (!db.open(connectionString))
        return {QStringLiteral("cannot open: ") + DbConnection::lastError()};
    for (const QString& table : sable::DbSchema::tableNames()) {
        rows << QStringLiteral("== ") + table;
        sable::DbRecordset records = db.execute(QStringLiteral("SELECT * FROM ") + table);
        for (; records.isValid() && !records.isEof(); records.moveNext()) {
            QStringList fields;
            for (int i = 0; i < records.fieldCount(); ++i) {
                if (records.fieldName(i).compare(sable::DbSchema::rankOrderColumn(), Qt::CaseInsensitive) != 0)
                    fields << records.fieldTextOrNull(i);
            }
            rows << fields.join(u'|');
        }
    }
    return rows;
}
