#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Turns a source into the image of a .sho file. On failure the image is empty and each message begins with
// the file's name.
bool AssembleShader(const std::string& text, const std::string& fileName, std::vector<uint8_t>& image,
                    std::vector<std::string>& errors);

// The same from file to file. The output appears whole or not at all.
bool AssembleShaderFile(const std::string& source, const std::string& output,
                        std::vector<std::string>& errors);
