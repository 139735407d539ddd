#pragma once

#include "support/server/TestCertificate.h"

#include <QHash>
#include <QList>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

#include <chrono>
#include <optional>
#include <utility>

class QSslSocket;

/// A small web server on the loopback address that does as it is told, on the thread that made it:
/// the test's event loop must run for it to answer.
///
/// Answers are taken from a queue, one for each request in the order of arrival; when the queue is empty
/// the answer is 200 with the body "{}".
class TlsServer final : public QTcpServer
{
    Q_OBJECT
public:
    enum class Security { plain, tls };
    enum class Afterwards { keepOpen, close };

    struct Request
    {
        QByteArray method;
        QByteArray target;
        QList<std::pair<QByteArray, QByteArray>> headers;
        QByteArray body;
        QByteArray bytes; ///< all of it as it came

        QByteArray header(QByteArrayView name) const;
    };

    /// The bytes of an answer and how they are sent.
    struct Answer
    {
        QByteArray bytes{};
        std::chrono::milliseconds delay{0};  ///< before the first byte
        qsizetype pieceSize = 0;             ///< when not 0, the bytes leave in pieces of this size
        std::chrono::milliseconds pause{0};  ///< between two pieces
        std::optional<qsizetype> cutAfter{}; ///< only so many bytes are sent
        Afterwards afterwards = Afterwards::keepOpen;

        /// An answer with a correct Content-Length.
        static Answer of(int status, const QByteArray &body, const QByteArray &type = "application/json",
                         const QList<std::pair<QByteArray, QByteArray>> &headers = {});
        static Answer json(int status, const QByteArray &body) { return of(status, body); }
        static Answer html(int status, const QByteArray &body) { return of(status, body, "text/html"); }
    };

    explicit TlsServer(Security security = Security::tls);
    /// A TLS server with this certificate instead of a good one.
    explicit TlsServer(const TestCertificate &certificate);

    /// The server's address with a path such as "/models".
    QUrl url(const QString &path) const;
    /// The authority behind a good certificate: what a client must trust.
    const TestCertificate &authority() const { return m_authority; }

    void answer(const Answer &answer) { m_answers += answer; }
    void forgetAnswers() { m_answers.clear(); }
    void closeAllConnections();
    /// What is sent over the connections open now is lost unseen, as where a network is gone; new ones work.
    void loseAllConnections();

    const QList<Request> &requests() const { return m_requests; } ///< complete ones
    int connections() const { return m_connections; }
    int openConnections() const { return int(m_received.size()); }
    int handshakes() const { return m_handshakes; }
    /// Bytes of requests that came so far, also of incomplete ones.
    qint64 bytesReceived() const { return m_bytesReceived; }

Q_SIGNALS:
    /// Something came, be it only a part of a request.
    void bytesArrived();
    void requestArrived();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void use(const TestCertificate &certificate);
    void receive(QSslSocket *socket);
    void reply(QSslSocket *socket);
    void sendFrom(QSslSocket *socket, const Answer &answer, qsizetype position);

    Security m_security;
    QSslConfiguration m_tls;
    TestCertificate m_authority;
    QList<Answer> m_answers;
    QList<Request> m_requests;
    QHash<QSslSocket *, QByteArray> m_received; // not yet a complete request
    int m_connections = 0;
    int m_handshakes = 0;
    qint64 m_bytesReceived = 0;
};
