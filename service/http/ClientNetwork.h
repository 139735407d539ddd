#pragma once

#include <string>

/// Where requests come from, as coarse as a limit on them has to be.
namespace ClientNetwork {

/// The IPv4 address itself, or the /64 network of an IPv6 address, since whoever has one address of it
/// has them all. Expects a numeric address; anything else stands for itself.
std::string of(const std::string &address);

} // namespace ClientNetwork
