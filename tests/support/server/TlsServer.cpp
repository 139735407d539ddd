#include "support/server/TlsServer.h"

#include <QHostAddress>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

#include <algorithm>

#include <linux/filter.h>
#include <sys/socket.h>

namespace {

/// A complete request at the start of the bytes.
std::optional<TlsServer::Request> requestIn(const QByteArray &bytes)
{
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return std::nullopt;
    const QList<QByteArray> lines = bytes.first(end).split('\n');
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    TlsServer::Request request;
    request.method = words.value(0);
    request.target = words.value(1);
    for (const QByteArray &line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.emplaceBack(line.first(std::max<qsizetype>(colon, 0)), line.sliced(colon + 1).trimmed());
    }
    const qsizetype start = end + 4;
    const qsizetype length = request.header("Content-Length").toLongLong();
    if (bytes.size() < start + length)
        return std::nullopt;
    request.body = bytes.sliced(start, length);
    request.bytes = bytes.first(start + length);
    return request;
}

} // namespace

QByteArray TlsServer::Request::header(QByteArrayView name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

TlsServer::Answer TlsServer::Answer::of(int status, const QByteArray &body, const QByteArray &type,
                                        const QList<std::pair<QByteArray, QByteArray>> &headers)
{
    Answer answer;
    answer.bytes = "HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\nContent-Type: " + type +
                   "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
    for (const auto &[name, value] : headers)
        answer.bytes += name + ": " + value + "\r\n";
    answer.bytes += "\r\n" + body;
    return answer;
}

TlsServer::TlsServer(Security security) : m_security(security)
{
    if (security == Security::tls) {
        m_authority = TestCertificate::authority();
        use(m_authority.issue({}));
    }
    listen(QHostAddress::LocalHost);
}

TlsServer::TlsServer(const TestCertificate &certificate) : m_security(Security::tls)
{
    use(certificate);
    listen(QHostAddress::LocalHost);
}

void TlsServer::use(const TestCertificate &certificate)
{
    m_tls = QSslConfiguration::defaultConfiguration();
    m_tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    m_tls.setLocalCertificate(QSslCertificate(certificate.certificate));
    m_tls.setPrivateKey(QSslKey(certificate.key, QSsl::Ec));
}

QUrl TlsServer::url(const QString &path) const
{
    QUrl url;
    url.setScheme(m_security == Security::tls ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(serverPort());
    url.setPath(path);
    return url;
}

void TlsServer::closeAllConnections()
{
    const QList<QSslSocket *> open = m_received.keys();
    for (QSslSocket *socket : open)
        socket->disconnectFromHost();
}

void TlsServer::loseAllConnections()
{
    sock_filter nothing{.code = BPF_RET | BPF_K, .jt = 0, .jf = 0, .k = 0};
    const sock_fprog filter{.len = 1, .filter = &nothing};
    for (auto it = m_received.keyBegin(); it != m_received.keyEnd(); ++it)
        setsockopt(int((*it)->socketDescriptor()), SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter);
}

void TlsServer::incomingConnection(qintptr descriptor)
{
    ++m_connections;
    auto *socket = new QSslSocket(this);
    m_received.insert(socket, {});
    connect(socket, &QSslSocket::encrypted, this, [this] { ++m_handshakes; });
    connect(socket, &QSslSocket::readyRead, this, [this, socket] { receive(socket); });
    connect(socket, &QSslSocket::disconnected, this, [this, socket] {
        m_received.remove(socket);
        socket->deleteLater();
    });
    socket->setSocketDescriptor(descriptor);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // as web servers do
    if (m_security == Security::tls) {
        socket->setSslConfiguration(m_tls);
        socket->startServerEncryption();
    }
}

void TlsServer::receive(QSslSocket *socket)
{
    const QByteArray bytes = socket->readAll();
    m_bytesReceived += bytes.size();
    Q_EMIT bytesArrived();
    QByteArray &received = m_received[socket];
    received += bytes;
    while (const auto request = requestIn(received)) {
        received.remove(0, request->bytes.size());
        m_requests += *request;
        Q_EMIT requestArrived();
        reply(socket);
    }
}

void TlsServer::reply(QSslSocket *socket)
{
    Answer answer = m_answers.isEmpty() ? Answer::json(200, "{}") : m_answers.takeFirst();
    if (answer.cutAfter)
        answer.bytes.truncate(*answer.cutAfter);
    if (answer.delay.count() == 0) {
        sendFrom(socket, answer, 0);
        return;
    }
    QTimer::singleShot(answer.delay, socket, [this, socket, answer] { sendFrom(socket, answer, 0); });
}

void TlsServer::sendFrom(QSslSocket *socket, const Answer &answer, qsizetype position)
{
    const qsizetype left = answer.bytes.size() - position;
    const qsizetype count = answer.pieceSize > 0 ? std::min(answer.pieceSize, left) : left;
    socket->write(answer.bytes.sliced(position, count));
    if (count < left) {
        QTimer::singleShot(answer.pause, socket,
                           [this, socket, answer, next = position + count] { sendFrom(socket, answer, next); });
    } else if (answer.afterwards == Afterwards::close) {
        socket->disconnectFromHost();
    }
}
