#pragma once

#include <cstdint>

// The identity of a command, patch, attribute or shader name on the console: a CRC-32 of the bytes, without
// the final inversion. Case counts, and collisions go unseen.
uint32_t NameToCrc(const char* name);
