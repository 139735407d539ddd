#include "service/http/ClientNetwork.h"

#include <algorithm>

#include <arpa/inet.h>
#include <netinet/in.h>

std::string ClientNetwork::of(const std::string &address)
{
    in6_addr parsed{};
    const std::string withoutScope = address.substr(0, address.find('%'));
    if (inet_pton(AF_INET6, withoutScope.c_str(), &parsed) != 1)
        return address;
    char text[INET6_ADDRSTRLEN] = {};
    if (IN6_IS_ADDR_V4MAPPED(&parsed)) {
        inet_ntop(AF_INET, &parsed.s6_addr[12], text, sizeof text);
        return text;
    }
    std::fill(parsed.s6_addr + 8, parsed.s6_addr + 16, 0);
    inet_ntop(AF_INET6, &parsed, text, sizeof text);
    return text;
}
