#pragma once

#include "service/protocol/Refusal.h"
#include "service/protocol/Upload.h"

#include <httplib.h>

#include <expected>
#include <string>

/// The form of a request to "/v1/audio/transcriptions".
struct AudioForm
{
    enum class Format { json, text, verboseJson };

    Upload upload;
    std::string model;
    Format format = Format::json;

    /// Parts that change nothing here (temperature, for one) are passed over; those that ask for what is
    /// not to be had (a stream, timestamps, subtitles) are refused.
    static std::expected<AudioForm, Refusal> read(const httplib::Request &request,
                                                  const httplib::ContentReader &body);
};
