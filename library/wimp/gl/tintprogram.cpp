#include "library/wimp/gl/tintprogram.h"

#include "library/containers/assertion.h"

namespace {
constexpr const char* TintText = "!!ARBfp1.0\n"
                                 "TEMP R0;\n"
                                 "PARAM c[1] = { program.local[0] };\n"
                                 "TEX R0, fragment.texcoord[0], texture[0], 2D;\n"
                                 "MUL result.color, R0, c[0];\n"
                                 "END\n";
constexpr const char* AlphaTintText = "!!ARBfp1.0\n"
                                      "TEMP R0;\n"
                                      "PARAM c[1] = { program.local[0] };\n"
                                      "TEX R0, fragment.texcoord[0], texture[0], 2D;\n"
                                      "MUL result.color, R0.w, c[0];\n"
                                      "END\n";

const TArbProgram& Assembled(TArbProgram& program, const char* text)
{
    if (!program.IsAssembled()) {
        const bool assembled = program.Assemble(text);
        ASSERT(assembled);
    }
    return program;
}
} // namespace

const TArbProgram& GetTintProgram()
{
    static TArbProgram& program = *new TArbProgram(AT_FRAGMENT);
    return Assembled(program, TintText);
}

const TArbProgram& GetAlphaTintProgram()
{
    static TArbProgram& program = *new TArbProgram(AT_FRAGMENT);
    return Assembled(program, AlphaTintText);
}
