#pragma once

#include "service/accounts/SignIns.h"

#include <string>

/// What the service tells whoever runs it, on standard output.
namespace Console {

/// One line, printed whole, or false: sign-in code 123456 for me@example.com until 2026-03-01T09:40:00Z
/// device "Desk"
bool show(const SignIns::Code &code, const std::string &email, const std::string &device);

} // namespace Console
