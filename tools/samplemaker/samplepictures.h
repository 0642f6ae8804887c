#pragma once

// Draws the samples' textures into a folder. The pictures are made with arithmetic that gives the same on
// every machine, so that the same bytes come out.
bool MakeSamplePictures(const char* folder);
