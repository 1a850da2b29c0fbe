#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

namespace sable {

// Downloads the upgrade program for data of the previous version into the server's folder and
// starts it. One download at a time; progress and the end come by signal.
class UpgradeDownload final : public QObject
{
    Q_OBJECT

public:
    UpgradeDownload(QUrl source, QString targetFolder, QObject* parent = nullptr);
    ~UpgradeDownload() override;

    bool isRunning() const { return m_reply != nullptr; }
    // Starts the download unless one runs; false when one was already under way.
    bool start();
    QString targetPath() const;

Q_SIGNALS:
    void progress(qint64 received, qint64 total);
    // `error` is empty when the program was downloaded and started.
    void finished(const QString& error);

private:
    void done();

    QUrl m_source;
    QString m_targetFolder;
    QNetworkAccessManager* m_network;
    QNetworkReply* m_reply = nullptr;
};

} // namespace sable
