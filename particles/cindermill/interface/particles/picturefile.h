#pragma once

#include "library/containers/string.h"

class TRgbPicture;

// Writes a PNG file, which appears whole or not at all. False with the reason.
bool WritePictureFile(const TRgbPicture& picture, const char* path, TString& fault);
