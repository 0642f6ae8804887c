#pragma once

class TRgbPicture;

// Writes a PNG file, which appears whole or not at all. False with the reason on the standard error.
bool WritePictureFile(const TRgbPicture& picture, const char* path);
