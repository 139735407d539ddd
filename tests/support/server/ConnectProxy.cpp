#include "support/server/ConnectProxy.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace {

void pour(QTcpSocket *from, QTcpSocket *to)
{
    const auto move = [from, to] {
        if (from->bytesAvailable() > 0 && to->isOpen())
            to->write(from->readAll());
    };
    QObject::connect(from, &QTcpSocket::readyRead, to, move);
    QObject::connect(from, &QTcpSocket::disconnected, to, [move, to] {
        move();
        to->disconnectFromHost();
    });
    move();
}

} // namespace

ConnectProxy::ConnectProxy()
{
    listen(QHostAddress::LocalHost);
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket *client = nextPendingConnection();
        connect(client, &QTcpSocket::readyRead, this, [this, client] { greet(client); });
    });
}

QByteArray ConnectProxy::address() const
{
    return "http://127.0.0.1:" + QByteArray::number(serverPort());
}

void ConnectProxy::greet(QTcpSocket *client)
{
    if (!client->peek(64 * 1024).contains("\r\n\r\n"))
        return;
    const QByteArray target = client->readAll().split(' ').value(1);
    client->disconnect(this);
    m_targets += target;
    if (!m_ports.contains(target)) {
        client->write("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n\r\n");
        client->disconnectFromHost();
        return;
    }
    auto *server = new QTcpSocket(client);
    connect(server, &QTcpSocket::connected, client, [client, server] {
        client->write("HTTP/1.1 200 Connection established\r\n\r\n");
        pour(client, server);
        pour(server, client);
    });
    server->connectToHost(QHostAddress::LocalHost, m_ports.value(target));
}
