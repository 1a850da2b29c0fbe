#pragma once

#include <QString>
#include <QUrl>
#include <QVariant>

namespace sable {

// A small XML-RPC client for supervisord's HTTP interface: one blocking request per call, each on
// a connection of its own, so that it works on any thread without an event loop.
class SupervisorClient
{
public:
    struct Endpoint
    {
        QUrl url; // http://127.0.0.1:9001/RPC2
        QString user;
        QString password;
        int timeoutMs = 5000;
    };

    struct Result
    {
        enum class Kind
        {
            Value, // the call returned `value`
            Fault, // supervisord answered with a fault (`faultCode`, `message`)
            TransportError, // no answer: refused, timed out, refused credentials, not XML-RPC (`message`)
        };
        Kind kind = Kind::TransportError;
        QVariant value;
        int faultCode = 0;
        QString message;
    };

    // supervisord's fault codes that the console tells apart.
    static constexpr int kBadName = 10;
    static constexpr int kAlreadyStarted = 60;
    static constexpr int kNotRunning = 70;

    explicit SupervisorClient(Endpoint endpoint);

    const Endpoint& endpoint() const { return m_endpoint; }

    // Calls `method` with `params` (strings, booleans and integers); structs come back as
    // QVariantMap, arrays as QVariantList.
    Result call(const QString& method, const QVariantList& params = {}) const;

    static QByteArray encodeCall(const QString& method, const QVariantList& params);
    static Result decodeResponse(const QByteArray& body);

private:
    Result post(const QByteArray& body) const;

    Endpoint m_endpoint;
};

} // namespace sable
