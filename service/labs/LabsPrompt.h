#pragma once

#include "service/labs/LabsRequest.h"

#include <string>

/// The words in which a client's request is put to an assistant.
namespace LabsPrompt {

/// What kind of text is wanted, and in which language.
std::string system(const LabsRequest &request);
/// The user's own words, after the text that they are about. A question is not about a text: one that
/// was left over from another mode stays here.
std::string user(const LabsRequest &request);

} // namespace LabsPrompt
