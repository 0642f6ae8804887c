#pragma once

#include "library/containers/string.h"

#include <cstdint>

// The program-wide identity of a name: a 32-bit hash that ignores case. Every name hashed is remembered, and
// two names that meet in one identity are fatal.
uint32_t StrToID(const char* name);

// The name behind an identity, or "UKID %x".
void IDToStr(uint32_t id, TString& result);
