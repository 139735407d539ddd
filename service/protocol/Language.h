#pragma once

#include <string_view>

/// The language codes that clients send.
namespace Language {

/// Whether the code is empty (unknown) or stands for English: "en", "en-GB", "EN_us".
bool mayBeEnglish(std::string_view code);

} // namespace Language
