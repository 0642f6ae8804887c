#pragma once

#include "tools/shaderassembler/shaderprogram.h"

#include <cstdint>

// The bytes of a .sho file; false if the program is too large for the file's 16-bit offsets.
bool BuildShaderImage(const TShaderProgram& program, std::vector<uint8_t>& image);
