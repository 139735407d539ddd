#pragma once

#include "service/dictation/Cleaner.h"

/// Edits by the rules of `Editor`, on this machine.
class RulesCleaner final : public Cleaner
{
public:
    const std::string &model() const override { return m_model; }
    std::expected<Result, Refusal> edited(const CleanupRequest &request,
                                          const std::function<bool()> &isUnwanted) override;

private:
    const std::string m_model = "sayvane-rules";
};
