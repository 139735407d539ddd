#pragma once

#include <xcb/xcb.h>

// The protocol's C header calls a field by a keyword of C++.
#define explicit explicitFlag // NOLINT(clang-diagnostic-keyword-macro)
#include <xcb/xkb.h>
#undef explicit
