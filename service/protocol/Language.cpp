#include "service/protocol/Language.h"

#include "service/text/Utf8.h"

bool Language::mayBeEnglish(std::string_view code)
{
    code = Utf8::trimmed(code);
    if (code.empty())
        return true;
    const bool begins =
        code.size() >= 2 && (code[0] == 'e' || code[0] == 'E') && (code[1] == 'n' || code[1] == 'N');
    return begins && (code.size() == 2 || code[2] == '-' || code[2] == '_');
}
