#include "service/protocol/Language.h"

#include "service/text/Utf8.h"

#include <strings.h>

bool Language::mayBeEnglish(std::string_view code)
{
    code = Utf8::trimmed(code);
    if (code.empty())
        return true;
    const bool begins = code.size() >= 2 && ::strncasecmp(code.data(), "en", 2) == 0;
    return begins && (code.size() == 2 || code[2] == '-' || code[2] == '_');
}
