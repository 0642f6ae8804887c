#include "tools/shaderassembler/shaderassembler.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "Usage: shaderassembler SOURCE.qsa OUTPUT.sho\n");
        return 2;
    }
    std::vector<std::string> errors;
    const bool done = AssembleShaderFile(argv[1], argv[2], errors);
    for (const std::string& error : errors)
        std::fprintf(stderr, "%s\n", error.c_str());
    return done ? 0 : 1;
}
