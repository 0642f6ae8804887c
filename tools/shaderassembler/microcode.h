#pragma once

#include "tools/shaderassembler/shaderprogram.h"

#include <cstdint>

// The chip's words, in the order of a file but in this machine's byte order.

// Four words an instruction.
std::vector<uint32_t> EncodeVertexProgram(const TShaderProgram& program);

struct TFragmentCode
{
    // Four words an instruction or literal; a literal stands behind the instruction that reads it. The chip's
    // exchange of the halves of each word is done.
    std::vector<uint32_t> Words;
    // Per named value: where its literals stand, in units of four words.
    std::vector<std::vector<int>> Literals;
};

TFragmentCode EncodeFragmentProgram(const TShaderProgram& program);
