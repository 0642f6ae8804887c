#include "fuzzfile.h"

#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    TLogCapture quiet([](const char*, void*) {}, nullptr);
    TString text;
    RunGuarded(
        [&] {
            TQdxShader shader;
            if (!shader.Parse(data, static_cast<int>(size)) || !shader.IsFragmentProgram())
                return;
            uint32_t targets[TQdxFragmentProgram::NumUnits];
            for (uint32_t& target : targets)
                target = TY_Target2D;
            TString program;
            shader.GetFragmentProgram()->GetVariantText(targets, 0, program);
        },
        text);
    return 0;
}
