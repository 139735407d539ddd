#pragma once

#include "service/dictation/Transcriber.h"
#include "service/upstream/UpstreamClient.h"

/// Lets the upstream server hear: the recording is passed on as it came.
class UpstreamTranscriber final : public Transcriber
{
public:
    explicit UpstreamTranscriber(const UpstreamClient &client) : m_client(client) {}

    const std::string &model() const override { return m_client.upstream().speechModel; }
    std::string onlyLanguage() const override { return {}; }
    int places() const override { return 16; } // up to 36 MB each
    std::expected<std::string, Refusal> transcribe(Upload upload,
                                                   const std::function<bool()> &isUnwanted) override;

private:
    const UpstreamClient &m_client;
};
