#pragma once

#include "service/dictation/Cleaner.h"
#include "service/upstream/UpstreamClient.h"

/// Lets a chat model of the upstream server edit, with the same prompt that the application uses.
class UpstreamCleaner final : public Cleaner
{
public:
    explicit UpstreamCleaner(const UpstreamClient &client) : m_client(client) {}

    const std::string &model() const override { return m_client.upstream().chatModel; }
    std::expected<Result, Refusal> edited(const CleanupRequest &request,
                                          const std::function<bool()> &isUnwanted) override;

private:
    const UpstreamClient &m_client;
};
