#include "particles/cindermill/interface/controls/pickerprograms.h"

namespace {

// By program. A hue's channels are trapezia that stand a third of a turn apart; saturation and luminance then
// draw them towards grey and to black or white.
constexpr const char* Texts[PP_NUMPROGRAMS] = {
    "!!ARBfp1.0\n"
    "PARAM c[1] = { program.local[0] };\n"
    "PARAM shift = { 0, 0.66666666667, 0.33333333333, 0.5 };\n"
    "PARAM shape = { 6, 3, 2, 1 };\n"
    "TEMP R0, R1;\n"
    "ADD R0.xyz, fragment.texcoord[0].x, shift;\n"
    "FRC R0.xyz, R0;\n"
    "MAD R0.xyz, R0, shape.x, -shape.y;\n"
    "ABS R0.xyz, R0;\n"
    "SUB_SAT R0.xyz, R0, shape.w;\n"
    "MAD R1.x, c[0].x, shape.z, -shape.w;\n"
    "ABS R1.x, R1.x;\n"
    "SUB R1.x, shape.w, R1.x;\n"
    "MUL R1.x, R1.x, fragment.texcoord[0].y;\n"
    "SUB R0.xyz, R0, shift.w;\n"
    "MAD result.color.xyz, R0, R1.x, c[0].x;\n"
    "MOV result.color.w, shape.w;\n"
    "END\n",

    "!!ARBfp1.0\n"
    "PARAM c[1] = { program.local[0] };\n"
    "MOV result.color.xy, fragment.texcoord[0];\n"
    "MOV result.color.z, c[0].x;\n"
    "MOV result.color.w, 1;\n"
    "END\n",

    "!!ARBfp1.0\n"
    "PARAM c[1] = { program.local[0] };\n"
    "MOV result.color.xy, c[0];\n"
    "MOV result.color.z, fragment.texcoord[0].y;\n"
    "MOV result.color.w, 1;\n"
    "END\n",

    "!!ARBfp1.0\n"
    "PARAM c[1] = { program.local[0] };\n"
    "MOV result.color.xyz, c[0];\n"
    "MOV result.color.w, fragment.texcoord[0].y;\n"
    "END\n",
};

} // namespace

TPickerPrograms& TPickerPrograms::GetShared()
{
    // Never destroyed: OpenGL is gone when the process ends.
    static TPickerPrograms& programs = *new TPickerPrograms;
    return programs;
}

void TPickerPrograms::Load()
{
    Loaded = true;
    for (int i = 0; i < PP_NUMPROGRAMS; ++i)
        Programs[i].Assemble(Texts[i]);
    GetGraphicsDevice()->CheckError();
}

const TArbProgram* TPickerPrograms::Get(TPickerProgram program)
{
    if (!Loaded)
        Load();
    return Programs[program].IsAssembled() ? &Programs[program] : nullptr;
}
