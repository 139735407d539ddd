#include "Exchange.h"

#include "ServiceProcess.h"

#include <QJsonDocument>
#include <QSslConfiguration>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int patienceMs = 60'000;
}

Exchange::Exchange(const ServiceProcess &service, const QString &name)
    : Exchange(service.port(), service.certificate(), name)
{
}

Exchange::Exchange(quint16 port, const QSslCertificate &certificate, const QString &name)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates({certificate});
    m_socket->setSslConfiguration(configuration);
    m_socket->setPeerVerifyName(name);
    m_socket->connectToHostEncrypted(u"127.0.0.1"_s, port);
    m_socket->waitForEncrypted(patienceMs);
}

bool Exchange::send(const QByteArray &bytes)
{
    m_socket->write(bytes);
    while (m_socket->bytesToWrite() > 0 || m_socket->encryptedBytesToWrite() > 0) {
        if (!m_socket->waitForBytesWritten(patienceMs))
            return false;
    }
    return true;
}

Exchange::Answer Exchange::receive()
{
    Answer answer;
    qsizetype headEnd = -1;
    qsizetype length = 0;
    for (;;) {
        m_received += m_socket->readAll();
        headEnd = m_received.indexOf("\r\n\r\n");
        if (headEnd >= 0) {
            answer.head = m_received.first(headEnd + 2);
            const auto field = answer.head.indexOf("\r\nContent-Length: ");
            length = answer.head.mid(field + 18).split('\r').first().toLongLong();
            if (m_received.size() >= headEnd + 4 + length)
                break;
        }
        if (!m_socket->waitForReadyRead(patienceMs) && m_socket->bytesAvailable() == 0)
            return {};
    }
    answer.status = answer.head.mid(9, 3).toInt();
    answer.body = QJsonDocument::fromJson(m_received.mid(headEnd + 4, length)).object();
    m_received = m_received.mid(headEnd + 4 + length);
    return answer;
}

QByteArray Exchange::request(const QByteArray &line, const QByteArray &token, const QByteArray &headers,
                             const QByteArray &body)
{
    return line + " HTTP/1.1\r\nHost: localhost\r\n" +
           (token.isEmpty() ? "" : "Authorization: Bearer " + token + "\r\n") + headers +
           (body.isEmpty() ? "" : "Content-Length: " + QByteArray::number(body.size()) + "\r\n") + "\r\n" + body;
}

QByteArray Exchange::part(const QByteArray &name, const QByteArray &content)
{
    const QByteArray file = name == "file" ? "; filename=\"audio.wav\"\r\nContent-Type: audio/wav" : "";
    return "--Sayvane-1\r\nContent-Disposition: form-data; name=\"" + name + "\"" + file + "\r\n\r\n" + content +
           "\r\n";
}

QByteArray Exchange::upload(const QByteArray &token, const QByteArray &form)
{
    return request("POST /v1/transcribe", token, "Content-Type: multipart/form-data; boundary=Sayvane-1\r\n", form);
}

QByteArray Exchange::recording(const QByteArray &wav)
{
    return part("file", wav) + endOfForm();
}
