#include "server/UpgradeDownload.h"

#include "platform/PrivateFiles.h"
#include "platform/ProcessLauncher.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSaveFile>

namespace sable {

UpgradeDownload::UpgradeDownload(QUrl source, QString targetFolder, QObject* parent)
    : QObject(parent)
    , m_source(std::move(source))
    , m_targetFolder(std::move(targetFolder))
    , m_network(new QNetworkAccessManager(this))
{ }

UpgradeDownload::~UpgradeDownload()
{
    if (m_reply)
        m_reply->abort();
}

QString UpgradeDownload::targetPath() const
{
    const QString name = QFileInfo(m_source.path()).fileName();
    return QDir(m_targetFolder).filePath(name.isEmpty() ? QStringLiteral("SM40Patch.exe") : name);
}

bool UpgradeDownload::start()
{
    if (m_reply)
        return false;
    QNetworkRequest request(m_source);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::downloadProgress, this, &UpgradeDownload::progress);
    connect(m_reply, &QNetworkReply::finished, this, &UpgradeDownload::done);
    return true;
}

void UpgradeDownload::done()
{
    QNetworkReply* reply = std::exchange(m_reply, nullptr);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        Q_EMIT finished(reply->errorString());
        return;
    }
    QSaveFile file(targetPath());
    const QByteArray bytes = reply->readAll();
    if (!file.open(QIODevice::WriteOnly) || !PrivateFiles::writeAll(file, bytes.constData(), bytes.size())
        || !PrivateFiles::commit(file)) {
        Q_EMIT finished(file.errorString());
        return;
    }
    QFile::setPermissions(targetPath(), QFile::permissions(targetPath()) | QFile::ExeOwner);
    const bool started = ProcessLauncher::launchDetached(targetPath(), {}, m_targetFolder);
    Q_EMIT finished(started ? QString() : targetPath());
}

} // namespace sable
