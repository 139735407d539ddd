#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>

class QTcpSocket;

/// A web proxy on the loopback address that leads CONNECT to servers of the test, on the thread that made
/// it: the test's event loop must run. So requests to a real host's name never leave this computer.
class ConnectProxy final : public QTcpServer
{
    Q_OBJECT
public:
    ConnectProxy();

    /// Leads "host:port" to a port on the loopback address. Any other target is refused with 502.
    void lead(const QByteArray &target, quint16 port) { m_ports.insert(target, port); }

    /// Such as "http://127.0.0.1:3128", for the environment.
    QByteArray address() const;
    /// Where clients wanted to be led, in order.
    const QList<QByteArray> &targets() const { return m_targets; }

private:
    void greet(QTcpSocket *client);

    QHash<QByteArray, quint16> m_ports;
    QList<QByteArray> m_targets;
};
