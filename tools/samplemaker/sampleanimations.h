#pragma once

// Writes the samples' animations into a folder.
bool MakeSampleAnimations(const char* folder);
