#include "platform/SupervisorClient.h"

#include <QDeadlineTimer>
#include <QTcpSocket>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace sable {
namespace {

void writeValue(QXmlStreamWriter& xml, const QVariant& value)
{
    xml.writeStartElement(QStringLiteral("value"));
    switch (value.typeId()) {
    case QMetaType::Bool:
        xml.writeTextElement(QStringLiteral("boolean"), value.toBool() ? QStringLiteral("1") : QStringLiteral("0"));
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        xml.writeTextElement(QStringLiteral("int"), QString::number(value.toLongLong()));
        break;
    default:
        xml.writeTextElement(QStringLiteral("string"), value.toString());
        break;
    }
    xml.writeEndElement();
}

QVariant readValue(QXmlStreamReader& xml);

// At the start tag of <struct>; reads up to its end tag.
QVariant readStruct(QXmlStreamReader& xml)
{
    QVariantMap map;
    while (xml.readNextStartElement()) { // <member>
        QString name;
        QVariant value;
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("name"))
                name = xml.readElementText();
            else if (xml.name() == QLatin1String("value"))
                value = readValue(xml);
            else
                xml.skipCurrentElement();
        }
        map.insert(name, value);
    }
    return map;
}

// At the start tag of <array>; reads up to its end tag.
QVariant readArray(QXmlStreamReader& xml)
{
    QVariantList list;
    while (xml.readNextStartElement()) { // <data>
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("value"))
                list << readValue(xml);
            else
                xml.skipCurrentElement();
        }
    }
    return list;
}

// At the start tag of <value>; reads up to its end tag. A value without a type element is a string.
QVariant readValue(QXmlStreamReader& xml)
{
    QVariant out;
    QString text;
    bool typed = false;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::Characters) {
            text += xml.text();
        } else if (token == QXmlStreamReader::EndElement) {
            break;
        } else if (token == QXmlStreamReader::StartElement) {
            typed = true;
            const auto type = xml.name();
            if (type == QLatin1String("struct")) {
                out = readStruct(xml);
            } else if (type == QLatin1String("array")) {
                out = readArray(xml);
            } else if (type == QLatin1String("int") || type == QLatin1String("i4") || type == QLatin1String("i8")) {
                out = xml.readElementText().trimmed().toLongLong();
            } else if (type == QLatin1String("boolean")) {
                out = xml.readElementText().trimmed() == QLatin1String("1");
            } else if (type == QLatin1String("double")) {
                out = xml.readElementText().trimmed().toDouble();
            } else {
                out = xml.readElementText();
            }
        }
    }
    return typed ? out : QVariant(text);
}

SupervisorClient::Result transportError(const QString& message)
{
    SupervisorClient::Result result;
    result.kind = SupervisorClient::Result::Kind::TransportError;
    result.message = message;
    return result;
}

// The status code and body of an HTTP/1.0 response, or an empty code when it is not one.
struct HttpResponse
{
    int status = 0;
    QByteArray body;
};

HttpResponse parseHttp(const QByteArray& raw)
{
    HttpResponse response;
    const qsizetype headerEnd = raw.indexOf("\r\n\r\n");
    if (headerEnd < 0 || !raw.startsWith("HTTP/"))
        return response;
    const QList<QByteArray> statusLine = raw.left(raw.indexOf("\r\n")).split(' ');
    response.status = statusLine.size() > 1 ? statusLine[1].toInt() : 0;
    response.body = raw.mid(headerEnd + 4);
    return response;
}

} // namespace

SupervisorClient::SupervisorClient(Endpoint endpoint)
    : m_endpoint(std::move(endpoint))
{ }

QByteArray SupervisorClient::encodeCall(const QString& method, const QVariantList& params)
{
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("methodCall"));
    xml.writeTextElement(QStringLiteral("methodName"), method);
    xml.writeStartElement(QStringLiteral("params"));
    for (const QVariant& param : params) {
        xml.writeStartElement(QStringLiteral("param"));
        writeValue(xml, param);
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return out;
}

SupervisorClient::Result SupervisorClient::decodeResponse(const QByteArray& body)
{
    QXmlStreamReader xml(body);
    bool fault = false;
    QVariant value;
    bool found = false;
    while (!xml.atEnd() && !found) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("fault")) {
            fault = true;
        } else if (xml.name() == QLatin1String("value")) {
            value = readValue(xml);
            found = true;
        }
    }
    if (!found || xml.hasError())
        return transportError(QStringLiteral("the supervisor's answer is not an XML-RPC response"));
    Result result;
    if (!fault) {
        result.kind = Result::Kind::Value;
        result.value = value;
        return result;
    }
    const QVariantMap map = value.toMap();
    result.kind = Result::Kind::Fault;
    result.faultCode = map.value(QStringLiteral("faultCode")).toInt();
    result.message = map.value(QStringLiteral("faultString")).toString();
    return result;
}

SupervisorClient::Result SupervisorClient::call(const QString& method, const QVariantList& params) const
{
    return post(encodeCall(method, params));
}

SupervisorClient::Result SupervisorClient::post(const QByteArray& body) const
{
    const QUrl& url = m_endpoint.url;
    if (url.scheme() != QLatin1String("http") || url.host().isEmpty())
        return transportError(QStringLiteral("not an http:// address: %1").arg(url.toString()));
    QByteArray request = "POST " + (url.path().isEmpty() ? QByteArray("/RPC2") : url.path().toUtf8())
        + " HTTP/1.0\r\nHost: " + url.authority().toUtf8()
        + "\r\nContent-Type: text/xml\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
    if (!m_endpoint.user.isEmpty()) {
        const QByteArray credentials = (m_endpoint.user + u':' + m_endpoint.password).toUtf8();
        request += "Authorization: Basic " + credentials.toBase64() + "\r\n";
    }
    request += "\r\n" + body;

    const QDeadlineTimer deadline(m_endpoint.timeoutMs);
    QTcpSocket socket;
    socket.connectToHost(url.host(), static_cast<quint16>(url.port(80)));
    if (!socket.waitForConnected(static_cast<int>(deadline.remainingTime())))
        return transportError(
            QStringLiteral("cannot reach the supervisor at %1: %2").arg(url.toString(), socket.errorString()));
    socket.write(request);
    QByteArray raw;
    while (socket.state() == QAbstractSocket::ConnectedState && !deadline.hasExpired()) {
        if (socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            raw += socket.readAll();
        else if (socket.error() != QAbstractSocket::RemoteHostClosedError)
            break;
    }
    raw += socket.readAll();
    if (deadline.hasExpired() && socket.state() == QAbstractSocket::ConnectedState)
        return transportError(QStringLiteral("the supervisor at %1 did not answer in time").arg(url.toString()));
    const HttpResponse response = parseHttp(raw);
    if (response.status == 401)
        return transportError(
            QStringLiteral("the supervisor at %1 refused the user name or password (HTTP 401)").arg(url.toString()));
    if (response.status != 200)
        return transportError(
            QStringLiteral("the supervisor at %1 answered HTTP %2")
                .arg(url.toString(),
                    response.status ? QString::number(response.status) : QStringLiteral("nothing usable")));
    return decodeResponse(response.body);
}

} // namespace sable
