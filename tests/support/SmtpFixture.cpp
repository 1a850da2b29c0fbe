#include "SmtpFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QUuid>

SmtpServer SmtpServer::fromFixture()
{
    SmtpServer server;
    QFile file(qEnvironmentVariable("SABLE_TEST_SMTP_ENV"));
    if (!file.open(QIODevice::ReadOnly))
        return server;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const qsizetype at = line.indexOf('=');
        const QString value = QString::fromUtf8(line.mid(at + 1));
        const QByteArray name = line.left(at);
        if (name == "port")
            server.port = value.toInt();
        else if (name == "maildir")
            server.maildir = value;
        else if (name == "rejected")
            server.refusedAddress = value;
        else if (name == "user")
            server.user = value;
        else if (name == "password")
            server.password = value;
        else if (name == "python")
            server.python = value;
        else if (name == "script")
            server.script = value;
    }
    return server;
}

sable::MailServerSettings SmtpServer::settings() const
{
    sable::MailServerSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = static_cast<quint16>(port);
    settings.senderAddress = QStringLiteral("postmaster@sable.example");
    return settings;
}

QList<ReceivedMail> SmtpServer::receivedBy(const QString& address) const
{
    QProcess dump;
    dump.start(python, {script, QStringLiteral("dump"), maildir});
    if (!dump.waitForFinished(30000) || dump.exitCode() != 0)
        return {};
    QList<ReceivedMail> out;
    for (const QJsonValue& value : QJsonDocument::fromJson(dump.readAllStandardOutput()).array()) {
        const QJsonObject o = value.toObject();
        if (o[QStringLiteral("envelope")].toString() != address)
            continue;
        const auto text = [&o](const char* key) { return o[QLatin1String(key)].toString(); };
        out.append({text("envelope"), text("fromName"), text("fromAddress"), text("toName"), text("toAddress"),
            text("subject"), text("messageId"), text("contentType"), text("charset"),
            QByteArray::fromBase64(text("body").toLatin1()), !o[QStringLiteral("date")].isNull(),
            o[QStringLiteral("defects")].toInt(), o[QStringLiteral("longestLine")].toInt()});
    }
    return out;
}

int closedLocalPort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    const int port = probe.serverPort();
    probe.close();
    return port;
}

QString uniqueAddress(const QString& local)
{
    return QStringLiteral("%1.%2@example.com").arg(local, QUuid::createUuid().toString(QUuid::Id128).left(10));
}
