#pragma once

// The next character of a text that may hold any bytes, and behind it; what is no UTF-8 is U+FFFD, a byte at
// a time. 0 at the end.
unsigned TakeCharacter(const char*& text);
