#pragma once

#include "service/protocol/CleanupRequest.h"
#include "service/protocol/Refusal.h"

#include <expected>
#include <functional>
#include <string>

/// What edits dictated text: rules of this program, or another server. May be used from several threads.
class Cleaner
{
public:
    struct Result
    {
        std::string text;
        bool skipped = false; ///< left as it came
    };

    virtual ~Cleaner() = default;

    /// The id by which clients may name it.
    virtual const std::string &model() const = 0;
    virtual std::expected<Result, Refusal> edited(const CleanupRequest &request,
                                                  const std::function<bool()> &isUnwanted) = 0;
};
