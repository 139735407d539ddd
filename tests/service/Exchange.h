#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QSslCertificate>
#include <QSslSocket>

#include <memory>

class ServiceProcess;

/// One connection to the service on which a test sends the bytes that it likes. Host name and
/// certificate are verified as by any client.
class Exchange
{
public:
    struct Answer
    {
        int status = 0; ///< 0: none came
        QByteArray head;
        QJsonObject body;

        QString code() const { return member("code"); }
        QString message() const { return member("message"); }

    private:
        QString member(const char *name) const { return body[QLatin1String("error")][QLatin1String(name)].toString(); }
    };

    explicit Exchange(const ServiceProcess &service, const QString &name = QStringLiteral("localhost"));
    Exchange(quint16 port, const QSslCertificate &certificate, const QString &name = QStringLiteral("localhost"));

    bool isOpen() const { return m_socket->isEncrypted() && m_socket->state() == QAbstractSocket::ConnectedState; }
    QSslSocket &socket() { return *m_socket; }
    /// Returns false when the other side no longer takes the bytes.
    bool send(const QByteArray &bytes);
    Answer receive();
    /// The answer to these bytes, also when it comes before all are sent.
    Answer ask(const QByteArray &bytes)
    {
        send(bytes);
        return receive();
    }

    static QByteArray request(const QByteArray &line, const QByteArray &token, const QByteArray &headers = {},
                              const QByteArray &body = {});
    static QByteArray part(const QByteArray &name, const QByteArray &content);
    /// A request for transcription whose body is these bytes, with the boundary that `part` uses.
    static QByteArray upload(const QByteArray &token, const QByteArray &form);
    static QByteArray recording(const QByteArray &wav);
    static QByteArray endOfForm() { return "--Sayvane-1--\r\n"; }

private:
    std::unique_ptr<QSslSocket> m_socket = std::make_unique<QSslSocket>();
    QByteArray m_received;
};
