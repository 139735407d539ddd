#include "machine/network/NetworkChanges.h"

#include <array>
#include <cerrno>
#include <ctime>

#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

// A shorter sleep leaves connections alive.
constexpr auto shortestSleep = 1s;

std::chrono::nanoseconds timeOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// How long the computer has slept since it was started.
std::chrono::nanoseconds timeAsleep()
{
    return timeOf(CLOCK_BOOTTIME) - timeOf(CLOCK_MONOTONIC);
}

/// Whether a server elsewhere can be reached from the address.
bool leadsElsewhere(int family, const QByteArray &address)
{
    if (family == AF_INET)
        return address.size() == sizeof(in_addr) && !address.startsWith('\x7f');
    if (family != AF_INET6 || address.size() != sizeof(in6_addr))
        return false;
    const auto *six = reinterpret_cast<const in6_addr *>(address.constData());
    return !IN6_IS_ADDR_LOOPBACK(six) && !IN6_IS_ADDR_LINKLOCAL(six);
}

} // namespace

NetworkChanges::NetworkChanges()
    : m_socket(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)),
      m_asleep(timeAsleep())
{
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    listAddresses();
    readNews();
}

NetworkChanges::~NetworkChanges()
{
    if (m_socket >= 0)
        close(m_socket);
}

bool NetworkChanges::happened()
{
    const std::chrono::nanoseconds asleep = timeAsleep();
    const bool hasSlept = asleep - m_asleep >= shortestSleep;
    if (hasSlept)
        m_asleep = asleep;
    return readNews() || hasSlept;
}

/// Has the kernel tell every address as if it were new.
void NetworkChanges::listAddresses()
{
    m_addresses.clear();
    struct
    {
        nlmsghdr head;
        ifaddrmsg body;
    } request{};
    request.head.nlmsg_len = sizeof request;
    request.head.nlmsg_type = RTM_GETADDR;
    request.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.body.ifa_family = AF_UNSPEC;
    (void)send(m_socket, &request, sizeof request, 0);
}

bool NetworkChanges::readNews()
{
    bool isNews = false;
    alignas(nlmsghdr) std::array<char, 32 * 1024> buffer; // the largest that the kernel fills
    for (;;) {
        const ssize_t size = recv(m_socket, buffer.data(), buffer.size(), 0);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == ENOBUFS) { // so much happened that a part of it is lost
            isNews = true;
            listAddresses();
            continue;
        }
        if (size <= 0)
            return isNews;
        auto left = static_cast<unsigned>(size);
        for (auto *message = reinterpret_cast<const nlmsghdr *>(buffer.data()); NLMSG_OK(message, left);
             message = NLMSG_NEXT(message, left))
            isNews = take(*message) || isNews;
    }
}

/// Whether the message tells of an address that came or went.
bool NetworkChanges::take(const nlmsghdr &message)
{
    if ((message.nlmsg_type != RTM_NEWADDR && message.nlmsg_type != RTM_DELADDR) ||
        message.nlmsg_len < NLMSG_LENGTH(sizeof(ifaddrmsg)))
        return false;
    const auto *body = reinterpret_cast<const ifaddrmsg *>(&message + 1);
    QByteArray address;
    auto left = static_cast<unsigned>(IFA_PAYLOAD(&message));
    for (auto *part = reinterpret_cast<const rtattr *>(body + 1); RTA_OK(part, left);
         part = RTA_NEXT(part, left)) {
        // Where both are told, this is the own end of a link between two.
        if (part->rta_type == IFA_LOCAL || (part->rta_type == IFA_ADDRESS && address.isEmpty()))
            address = QByteArray(reinterpret_cast<const char *>(part + 1), RTA_PAYLOAD(part));
    }
    if (!leadsElsewhere(body->ifa_family, address))
        return false;
    const QByteArray key = QByteArray::number(body->ifa_index) + ' ' + address;
    if (message.nlmsg_type == RTM_DELADDR)
        return m_addresses.remove(key);
    const qsizetype known = m_addresses.size();
    m_addresses.insert(key);
    return m_addresses.size() > known;
}
