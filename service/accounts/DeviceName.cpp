#include "service/accounts/DeviceName.h"

#include "service/text/Utf8.h"

std::string DeviceName::shaped(std::string_view text)
{
    constexpr size_t longest = 64;
    const std::string valid = Utf8::valid(text);
    const std::string name = Utf8::withoutControls(Utf8::trimmed(valid));
    return name.empty() ? "Unknown device" : std::string(Utf8::trimmed(Utf8::prefix(name, longest)));
}
