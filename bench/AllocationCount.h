#pragma once

#include <cstdint>

/// How often this process has asked for memory with `new` so far.
uint64_t allocationCount();
