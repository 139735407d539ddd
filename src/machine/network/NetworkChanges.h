#pragma once

#include <QByteArray>
#include <QSet>

#include <chrono>

struct nlmsghdr;

/// Tells when connections that were opened earlier may lead nowhere: an address of this computer came or
/// went, or the computer slept. It wakes nobody: what happened is read when somebody asks.
///
/// The kernel announces addresses over a netlink socket (rtnetlink(7)); sleep is what CLOCK_BOOTTIME counts
/// and CLOCK_MONOTONIC does not (clock_gettime(2)). Addresses of the loopback and of one link alone, which
/// containers come and go with, do not count, nor does an address whose lifetime is renewed.
class NetworkChanges
{
public:
    NetworkChanges();
    ~NetworkChanges();
    Q_DISABLE_COPY_MOVE(NetworkChanges)

    /// Whether something happened since this was last asked, or else since the start.
    bool happened();

private:
    void listAddresses();
    bool readNews();
    bool take(const nlmsghdr &message);

    int m_socket;
    QSet<QByteArray> m_addresses; // each with its interface
    std::chrono::nanoseconds m_asleep;
};
