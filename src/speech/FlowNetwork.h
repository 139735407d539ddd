#pragma once

#include <chrono>

/// The limits of every exchange with a speech, account or assistant service.
namespace FlowNetwork {

using namespace std::chrono_literals;

inline constexpr std::chrono::milliseconds requestTimeout = 60s;
inline constexpr std::chrono::milliseconds resourceTimeout = 180s;

} // namespace FlowNetwork
