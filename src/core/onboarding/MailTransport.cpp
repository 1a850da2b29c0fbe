#include "onboarding/MailTransport.h"

#include <cstring>
#include <curl/curl.h>
#include <memory>
#include <mutex>

namespace sable {
namespace {

constexpr long kConnectTimeoutSeconds = 15;
constexpr long kMessageTimeoutSeconds = 120;

void initialiseCurl()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

// What the server said, and the command it last said no to (a refused EHLO, answered by a HELO,
// must not count against a later recipient). Only the verbs of the commands are kept: the lines
// that follow AUTH carry the credentials.
struct Transcript
{
    QStringList replies;
    QByteArray lastCommand;
    QByteArray refusedCommand;
};

QByteArray commandVerb(const QByteArray& line)
{
    const QByteArray verb = line.left(line.indexOf(' ')).toUpper();
    for (const char* known : {"EHLO", "HELO", "STARTTLS", "AUTH", "MAIL", "RCPT", "DATA", "NOOP", "QUIT"}) {
        if (verb == known)
            return verb;
    }
    return QByteArrayLiteral("AUTH-DATA");
}

int onDebug(CURL*, curl_infotype type, char* data, size_t size, void* user)
{
    auto* transcript = static_cast<Transcript*>(user);
    const QByteArray line = QByteArray(data, static_cast<qsizetype>(size)).trimmed();
    if (type == CURLINFO_HEADER_OUT) {
        const QByteArray verb = commandVerb(line);
        if (verb != "QUIT")
            transcript->lastCommand = verb;
    } else if (type == CURLINFO_HEADER_IN) {
        transcript->replies << QString::fromUtf8(line);
        if (line.left(3).toInt() >= 400)
            transcript->refusedCommand = transcript->lastCommand;
    }
    return 0;
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    const auto* stop = static_cast<const std::atomic_bool*>(user);
    return stop && stop->load() ? 1 : 0;
}

struct Upload
{
    QByteArray bytes;
    qsizetype at = 0;
};

size_t onRead(char* buffer, size_t size, size_t count, void* user)
{
    auto* upload = static_cast<Upload*>(user);
    const auto n = qMin(static_cast<qsizetype>(size * count), upload->bytes.size() - upload->at);
    std::memcpy(buffer, upload->bytes.constData() + upload->at, static_cast<size_t>(n));
    upload->at += n;
    return static_cast<size_t>(n);
}

size_t onWrite(char*, size_t size, size_t count, void*)
{
    return size * count;
}

struct EasyDeleter
{
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct ListDeleter
{
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

QByteArray serverUrl(const MailServerSettings& settings)
{
    QByteArray host = settings.host.trimmed().toUtf8();
    if (host.contains(':') && !host.startsWith('['))
        host = '[' + host + ']';
    const QByteArray scheme = settings.security == MailSecurity::Tls ? "smtps" : "smtp";
    return scheme + "://" + host + ':' + QByteArray::number(settings.port);
}

// One connection to the server, set up as the settings ask, with the transcript recorded.
class CurlSession
{
    Q_DISABLE_COPY_MOVE(CurlSession) // libcurl holds the addresses of the transcript and the error text

public:
    CurlSession(const MailServerSettings& settings, const std::atomic_bool* stop)
        : m_handle(curl_easy_init())
    {
        if (!m_handle)
            return;
        CURL* h = m_handle.get();
        curl_easy_setopt(h, CURLOPT_URL, serverUrl(settings).constData());
        curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "smtp,smtps");
        curl_easy_setopt(h, CURLOPT_USE_SSL,
            static_cast<long>(settings.security == MailSecurity::StartTls ? CURLUSESSL_ALL : CURLUSESSL_NONE));
        if (!settings.user.isEmpty()) {
            curl_easy_setopt(h, CURLOPT_USERNAME, settings.user.toUtf8().constData());
            curl_easy_setopt(h, CURLOPT_PASSWORD, settings.password.toUtf8().constData());
        }
        curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
        curl_easy_setopt(h, CURLOPT_TIMEOUT, kMessageTimeoutSeconds);
        curl_easy_setopt(h, CURLOPT_ERRORBUFFER, m_error);
        curl_easy_setopt(h, CURLOPT_VERBOSE, 1L); // feeds the debug callback, which prints nothing
        curl_easy_setopt(h, CURLOPT_DEBUGFUNCTION, onDebug);
        curl_easy_setopt(h, CURLOPT_DEBUGDATA, &m_transcript);
        curl_easy_setopt(h, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(h, CURLOPT_XFERINFOFUNCTION, onProgress);
        curl_easy_setopt(h, CURLOPT_XFERINFODATA, stop);
    }

    CURL* handle() const { return m_handle.get(); }

    MailTransport::Result perform()
    {
        MailTransport::Result result;
        if (!m_handle) {
            result.error = QStringLiteral("libcurl could not start a session");
            return result;
        }
        const CURLcode code = curl_easy_perform(m_handle.get());
        result.replies = m_transcript.replies;
        if (code == CURLE_OK) {
            result.outcome = MailTransport::Outcome::Sent;
            return result;
        }
        result.error = QString::fromUtf8(m_error[0] ? m_error : curl_easy_strerror(code));
        if (code == CURLE_ABORTED_BY_CALLBACK)
            result.outcome = MailTransport::Outcome::Stopped;
        else if (m_transcript.refusedCommand == "RCPT" || m_transcript.refusedCommand == "DATA")
            result.outcome = MailTransport::Outcome::Refused;
        else
            result.outcome = MailTransport::Outcome::TransportFailed;
        return result;
    }

private:
    std::unique_ptr<CURL, EasyDeleter> m_handle;
    Transcript m_transcript;
    char m_error[CURL_ERROR_SIZE] = {};
};

} // namespace

MailTransport::MailTransport(MailServerSettings settings)
    : m_settings(std::move(settings))
{
    initialiseCurl();
}

MailTransport::Result MailTransport::send(const MailMessage& message) const
{
    if (m_stop && m_stop->load())
        return {Outcome::Stopped, {}, {}};
    if (!m_settings.isComplete())
        return {Outcome::TransportFailed, QStringLiteral("no mail server or sender address is set"), {}};

    Upload upload {
        MimeMessage::compose(message, QDateTime::currentDateTime(), MimeMessage::newMessageId(message.senderAddress)),
        0};
    const QByteArray sender = '<' + MimeMessage::addressText(message.senderAddress) + '>';
    const QByteArray recipient = '<' + MimeMessage::addressText(message.recipientAddress) + '>';
    const std::unique_ptr<curl_slist, ListDeleter> recipients(curl_slist_append(nullptr, recipient.constData()));
    CurlSession session(m_settings, m_stop);
    CURL* h = session.handle();
    if (h) {
        curl_easy_setopt(h, CURLOPT_MAIL_FROM, sender.constData());
        curl_easy_setopt(h, CURLOPT_MAIL_RCPT, recipients.get());
        curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(h, CURLOPT_READFUNCTION, onRead);
        curl_easy_setopt(h, CURLOPT_READDATA, &upload);
        curl_easy_setopt(h, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(upload.bytes.size()));
    }
    return session.perform();
}

MailTransport::Result MailTransport::probe() const
{
    if (m_settings.host.trimmed().isEmpty())
        return {Outcome::TransportFailed, QStringLiteral("no mail server is set"), {}};
    CurlSession session(m_settings, m_stop);
    if (CURL* h = session.handle()) {
        curl_easy_setopt(h, CURLOPT_CUSTOMREQUEST, "NOOP");
        curl_easy_setopt(h, CURLOPT_WRITEFUNCTION, onWrite);
    }
    return session.perform();
}

QString MailTransport::describe(const Result& result)
{
    QStringList lines;
    if (!result.error.isEmpty())
        lines << result.error;
    lines << result.replies;
    return lines.join(u'\n');
}

} // namespace sable
