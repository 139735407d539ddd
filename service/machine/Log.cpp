#include "service/machine/Log.h"

#include "service/machine/WallClock.h"

#include <string>

#include <unistd.h>

namespace {

/// One write per line: lines of several threads do not mix.
void print(std::string line)
{
    line = Timestamp::of(systemTime()) + ' ' + line;
    line += '\n';
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

/// What came from outside, short and without anything that a terminal would obey.
std::string harmless(std::string_view text)
{
    std::string result;
    for (const char c : text.substr(0, 80))
        result += c > ' ' && c < 0x7f ? c : '?';
    return result;
}

} // namespace

void Log::note(std::string_view text)
{
    print(std::string(text));
}

void Log::failure(std::string_view text)
{
    print("error: " + std::string(text));
}

void Log::answer(std::string_view method, std::string_view path, int status,
                 std::chrono::milliseconds duration)
{
    print(harmless(method) + ' ' + harmless(path) + ' ' + std::to_string(status) + ' ' +
          std::to_string(duration.count()) + " ms");
}
