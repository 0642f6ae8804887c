#pragma once

#include <cstddef>

// The bytes that this program has allocated, whatever it has freed since. The sanitizers count allocations of
// their own: with them there is no such count.
size_t GetAllocatedBytes();
