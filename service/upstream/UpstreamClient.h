#pragma once

#include "service/protocol/Refusal.h"
#include "service/upstream/Upstream.h"

#include <expected>
#include <functional>
#include <string>

/// Sends requests to the upstream server, over TLS with its certificate verified, each on a connection of
/// its own. May be used from several threads.
class UpstreamClient
{
public:
    explicit UpstreamClient(Upstream upstream) : m_upstream(std::move(upstream)) {}

    const Upstream &upstream() const { return m_upstream; }

    struct Message
    {
        std::string path; ///< below the upstream's base address
        std::string contentType;
        std::string body;
    };
    /// The body of a 200 answer. Gives up when `patience` is over, or as soon as the answer is unwanted.
    std::expected<std::string, Refusal> post(Message message, std::chrono::seconds patience,
                                             const std::function<bool()> &isUnwanted) const;

private:
    const Upstream m_upstream;
};
