#pragma once

#include "service/protocol/Refusal.h"
#include "service/protocol/Upload.h"

#include <expected>
#include <functional>
#include <string>

/// What turns recordings into text: decoders of this program, or another server. May be used from
/// several threads.
class Transcriber
{
public:
    virtual ~Transcriber() = default;

    /// The id by which clients may name it.
    virtual const std::string &model() const = 0;
    /// The one language that it hears, in English and lower case; empty when it hears several.
    virtual std::string onlyLanguage() const = 0;
    /// How many recordings may be in memory at once.
    virtual int places() const = 0;
    /// The text of a WAV file of the format that `Recording` reads. Asks several times a second whether
    /// the text is still wanted, and refuses as `Refusal::stopping` once it is not.
    virtual std::expected<std::string, Refusal> transcribe(Upload upload,
                                                           const std::function<bool()> &isUnwanted) = 0;
};
