#pragma once

#include <cstdint>

// The tiles of a flip book's picture, as the animated texture and the console's command of it number them.

// The tile that a frame shows, by the loop mode's number: 0 stays at the ends, 1 begins anew, 2 goes back;
// with any other the frame is the tile, past the last one too.
int64_t ChooseTile(int64_t frame, int64_t tiles, int mode);

// 0 for no divisions.
float GetTileFraction(int64_t part, int64_t divisions);
