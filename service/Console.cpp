#include "service/Console.h"

#include "service/machine/Log.h"
#include "service/machine/WallClock.h"

#include <algorithm>

#include <unistd.h>

bool Console::show(const SignIns::Code &code, const std::string &email, const std::string &device)
{
    std::string quoted = device;
    std::ranges::replace(quoted, '"', '\'');
    const std::string line = "sign-in code " + code.digits + " for " + email + " until " +
                             Timestamp::of(code.expires) + " device \"" + quoted + "\"\n";
    const bool shown = ::write(STDOUT_FILENO, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    if (!shown)
        Log::failure("a sign-in code could not be shown: standard output is closed or full");
    return shown;
}
