#pragma once

#include <cstdint>

// The pixels of a frame buffer, as red, green, blue, in rows from the top without gaps. Its context is
// current.
void ReadFramePixels(unsigned frameBuffer, int width, int height, uint8_t* pixels);
