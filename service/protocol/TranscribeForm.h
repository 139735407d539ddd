#pragma once

#include "service/protocol/Refusal.h"
#include "service/protocol/Upload.h"

#include <httplib.h>

#include <expected>

/// The form of a request for transcription.
namespace TranscribeForm {

/// A recording as "file" and perhaps "language" and "prompt"; anything else is refused.
std::expected<Upload, Refusal> read(const httplib::Request &request, const httplib::ContentReader &body);

} // namespace TranscribeForm
